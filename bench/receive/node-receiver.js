// The same work as the bridge does for these two kinds of message, on Node and its usual WebSocket package.
// port, folder. Log lines go to standard output; ends when standard input ends.
'use strict';
const fs = require('fs');
const { WebSocketServer } = require('ws');

const [port, folder] = process.argv.slice(2);
const server = new WebSocketServer({ port: Number(port), host: '127.0.0.1', perMessageDeflate: false, maxPayload: 0 });
const pointer = { x: 0, y: 0 };
let posted = 0;
let file = -1;

function handle(message) {
    if (message.action === 'remote_control' && message.type === 'mouse_move') {
        pointer.x += message.dx;
        pointer.y += message.dy;
        posted += 1;
    } else if (message.action === 'file_transfer_start') {
        file = fs.openSync(`${folder}/${message.fileName}`, 'w');
    } else if (message.action === 'file_chunk') {
        fs.writeSync(file, Buffer.from(message.fileData, 'base64'));
        if (message.isLast === true) {
            fs.closeSync(file);
        }
    }
}

server.on('connection', (socket, request) => {
    const peer = `${request.socket.remoteAddress}:${request.socket.remotePort}`;
    request.socket.setNoDelay(true);
    socket.send('{"action":"connected","deviceName":"bench"}');
    socket.on('message', (data) => {
        fs.writeSync(1, `[WebSocketServer] Received complete message of ${data.length} bytes from ${peer}\n`);
        handle(JSON.parse(data));
    });
});
process.stdin.on('end', () => {
    fs.writeSync(2, `posted ${posted}\n`);
    process.exit(0);
});
process.stdin.resume();
