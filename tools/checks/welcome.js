// Connects until the program is there, and passes when its welcome arrives: node welcome.js URL SECONDS
// The package ws comes from tests/app/node/install, run with build/node.
const path = require("node:path");
const { WebSocket } = require(path.join(__dirname, "../../build/node/node_modules/ws"));
const [url, seconds] = process.argv.slice(2);
const until = Date.now() + Number(seconds) * 1000;

function attempt() {
  const socket = new WebSocket(url);
  socket.on("message", (data) => {
    const welcome = JSON.parse(data);
    console.log(`welcome: ${data}`);
    process.exit(welcome.action === "connected" ? 0 : 1);
  });
  socket.on("error", (error) => {
    if (Date.now() < until) return setTimeout(attempt, 500);
    console.error(`no connection to ${url} within ${seconds} s: ${error.message}`);
    process.exit(1);
  });
}

attempt();
setTimeout(() => {
  console.error(`no welcome from ${url} within ${seconds} s`);
  process.exit(1);
}, until - Date.now() + 1000);
