// One hundred clients come, speak and leave, over and over, while a file arrives: see tools/checks/crowd.
const { WebSocket } = require("ws");
const [port, seconds, doneFile] = process.argv.slice(2);
const until = Date.now() + Number(seconds) * 1000;
const counts = { connected: 0, welcomed: 0, failed: 0 };

function visit(number) {
  if (Date.now() > until) return Promise.resolve();
  return new Promise((resolve) => {
    const socket = new WebSocket(`ws://127.0.0.1:${port}/`);
    socket.on("open", () => (counts.connected += 1));
    socket.on("message", () => {
      counts.welcomed += 1;
      for (let each = 0; each < 20; ++each) {
        socket.send(JSON.stringify({ action: "battery_status", level: 80, isCharging: true }));
        socket.send(JSON.stringify({ action: "device_info", wifiName: `net ${number}`, deviceName: `phone ${number}` }));
        socket.send("not json");
      }
      // Some leave properly, some are simply gone.
      if (number % 3 === 0) socket.terminate();
      else socket.close();
    });
    socket.on("error", () => (counts.failed += 1));
    socket.on("close", resolve);
  }).then(() => visit(number));
}

Promise.all(Array.from({ length: 100 }, (_, number) => visit(number))).then(() => {
  console.log(`crowd: ${counts.connected} connections, ${counts.welcomed} welcomes, ${counts.failed} failures`);
  process.exit(counts.failed === 0 && counts.connected > 0 ? 0 : 1);
});
