// The same work as the bridge does to send a file, on Node and its usual WebSocket package. port, folder.
// Sends the file that each line of standard input names to all connections; ends when standard input ends.
'use strict';
const fs = require('fs');
const path = require('path');
const readline = require('readline');
const { WebSocketServer } = require('ws');

const chunkBytes = 1 << 20;
const server = new WebSocketServer({ port: Number(process.argv[2]), host: '127.0.0.1', perMessageDeflate: false });

function sendToAll(message) {
    const text = JSON.stringify(message);
    for (const socket of server.clients) {
        socket.send(text);
    }
}

function sendFile(name) {
    const fileName = path.basename(name);
    const file = fs.openSync(name, 'r');
    const fileSize = fs.fstatSync(file).size;
    sendToAll({ action: 'file_transfer_start', fileName, fileSize });
    const chunk = Buffer.alloc(chunkBytes);
    for (let sent = 0; sent < fileSize;) {
        const count = fs.readSync(file, chunk);
        sent += count;
        const fileData = chunk.toString('base64', 0, count);
        sendToAll({ action: 'file_chunk', fileName, fileData, isLast: sent >= fileSize });
    }
    fs.closeSync(file);
}

server.on('connection', (socket, request) => {
    request.socket.setNoDelay(true);
    socket.send('{"action":"connected","deviceName":"bench"}');
});
const input = readline.createInterface({ input: process.stdin });
input.on('line', sendFile);
input.on('close', () => process.exit(0));
