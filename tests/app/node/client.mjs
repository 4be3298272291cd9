// A phone made of the `ws` package: each line of standard input goes out as one message, and each message that
// comes in is written as one line after "< ".
import readline from "node:readline";
import WebSocket from "ws";

const socket = new WebSocket(process.argv[2]);
const lines = readline.createInterface({ input: process.stdin });
const waiting = [];

socket.on("open", () => waiting.splice(0).forEach((line) => socket.send(line)));
socket.on("message", (data, isBinary) => console.log(`${isBinary ? "<binary " : "< "}${data}`));
socket.on("close", (code) => {
  console.log(`closed ${code}`);
  process.exit(0);
});
socket.on("error", (error) => {
  console.log(`error ${error.message}`);
  process.exit(1);
});
lines.on("line", (line) => (socket.readyState === WebSocket.OPEN ? socket.send(line) : waiting.push(line)));
