// A phone written from docs/protocol.md and nothing else: phone.mjs URL FOLDER
//
// Each line of standard input is a JSON object {"do": name, ...}; what happens is written as JSON lines, each with a
// "what". Files from the computer go into FOLDER.
import crypto from "node:crypto";
import fs from "node:fs";
import path from "node:path";
import readline from "node:readline";
import WebSocket from "ws";

const [url, folder] = process.argv.slice(2);
const chunkBytes = 1 << 20;
const tell = (what, rest = {}) => console.log(JSON.stringify({ what, ...rest }));

class Phone {
  socket = null;
  waiting = [];
  notifications = new Map();
  messages = [{ address: "+49 151 5551000", name: "Ada Winter", body: "On my way", date: 1700000000000, type: 1 }];
  calls = [{ number: "5551", date: 1700000000000, duration: 63, type: 1 }];
  incoming = new Map();
  call = null;

  connect() {
    // Chunks make frames of 1.4 MB, and a clipboard text can be longer.
    this.socket = new WebSocket(url, { maxPayload: 1 << 30, perMessageDeflate: true });
    this.socket.on("open", () => this.opened());
    this.socket.on("message", (data) => this.received(data.toString()));
    this.socket.on("pong", (data) => tell("pong", { payload: data.toString() }));
    this.socket.on("error", (error) => tell("error", { text: error.message }));
    this.socket.on("close", (code) => {
      tell("closed", { code });
      setTimeout(() => this.connect(), 1000);
    });
  }

  /** The computer forgets the phone with its last connection. */
  opened() {
    tell("open", { extensions: this.socket.extensions });
    this.send({ action: "connected", deviceName: "Paper Phone" });
    this.send({ action: "device_info", wifiName: "Attic Wi-Fi", deviceName: "Paper Phone" });
    this.send({ action: "sim_info", sims: [{ slot: 0, carrier: "Blue Mobile" }, { slot: 1, carrier: "Nordnet" }] });
    this.waiting.splice(0).forEach((message) => this.send(message));
  }

  send(message) {
    if (this.socket.readyState === WebSocket.OPEN) this.socket.send(JSON.stringify(message));
    else this.waiting.push(message);
  }

  received(text) {
    let message;
    try {
      message = JSON.parse(text);
    } catch {
      // The number of make_call and the name of file_transfer_start may break their message.
      return tell("broken", { text: text.slice(0, 200) });
    }
    const act = this.actions[message.action];
    return act ? act.call(this, message, text.length) : tell("unknown", message);
  }

  actions = {
    connected: ({ deviceName }) => tell("welcome", { deviceName }),
    find_device: () => tell("find"),
    get_sms_history: () => this.sendMessages(),
    get_call_history: () => this.send({ action: "call_history", calls: this.calls }),
    reply: ({ key, message }) =>
      this.notifications.has(key)
        ? tell("reply", { to: this.notifications.get(key).title, message })
        : tell("unmatched", { key, message }),
    send_sms: ({ number, body, simSlot }) => {
      // Each history replaces the log, so the new message has to be in the next one.
      this.messages.push({ address: number, body, date: Date.now(), type: 2 });
      tell("sms", { number, body, simSlot });
      this.sendMessages();
    },
    make_call: ({ number, simSlot }) => {
      tell("dial", { number, simSlot });
      this.pickUp(number);
    },
    answer_call: () => this.call && this.pickUp(this.call),
    hangup_call: () => this.call && this.end(),
    toggle_speaker: ({ enabled }) => tell("speaker", { enabled }),
    toggle_mute: ({ enabled }) => tell("mute", { enabled }),
    clipboard: ({ text }) => tell("clipboard", { text }),
    media_command: ({ command }) => tell("media", { command }),
    nav_command: ({ command }) => tell("nav", { command }),
    file_transfer_start: ({ fileName, fileSize }) => this.startFile(fileName, fileSize),
    file_chunk: ({ fileName, fileData, isLast }, frame) => this.addToFile(fileName, fileData, isLast, frame),
  };

  sendMessages() {
    this.send({ action: "sms_history", messages: this.messages });
  }

  // Calls

  ring({ number, name }) {
    this.call = number;
    this.send({ action: "incoming_call", state: "RINGING", number, name });
  }
  pickUp(number) {
    this.call = number;
    this.send({ action: "call_state_changed", state: "OFFHOOK", number });
    this.send({ action: "call_update", duration: 1 });
  }
  end() {
    this.call = null;
    this.send({ action: "call_ended" });
    tell("ended");
  }

  // Files

  /** The last part of a name, without what a file system may stumble over. */
  safeName(name) {
    const last = name.split(/[/\\]/).pop().replace(/[\u0000-\u001f\u007f]/g, "_").slice(0, 80);
    return last === "" || last === "." || last === ".." ? "file" : last;
  }
  startFile(name, size) {
    const file = path.join(folder, this.safeName(name));
    fs.writeFileSync(file, "");
    this.incoming.set(name, { file, size, largestFrame: 0 });
    if (size === 0) this.finishFile(name);
  }
  addToFile(name, data, isLast, frame) {
    if (!this.incoming.has(name)) this.startFile(name, -1);
    const transfer = this.incoming.get(name);
    transfer.largestFrame = Math.max(transfer.largestFrame, frame);
    fs.appendFileSync(transfer.file, Buffer.from(data, "base64"));
    if (isLast) this.finishFile(name);
  }
  finishFile(name) {
    const { file, size, largestFrame } = this.incoming.get(name);
    this.incoming.delete(name);
    const bytes = fs.readFileSync(file);
    tell("file", { name: path.basename(file), announced: size, size: bytes.length, largestFrame,
                   sha256: crypto.createHash("sha256").update(bytes).digest("hex") });
  }
  /** With "pieces", only that many chunks; with "from", those from there on and no start. */
  sendFile({ file, pieces = Infinity, from = 0 }) {
    const bytes = fs.readFileSync(file);
    const fileName = this.safeName(path.basename(file));
    if (from === 0) this.send({ action: "file_transfer_start", fileName, fileSize: bytes.length });
    for (let piece = from; piece < from + pieces && piece * chunkBytes < bytes.length; ++piece) {
      const end = (piece + 1) * chunkBytes;
      this.send({ action: "file_chunk", fileName, fileData: bytes.subarray(piece * chunkBytes, end).toString("base64"),
                  isLast: end >= bytes.length });
    }
  }

  // What the test asks for

  commands = {
    notify: ({ app, title, body, key }) => {
      if (key) this.notifications.set(key, { title });
      this.send({ app, title, body, key, time: Date.now() / 1000 });
    },
    ring: (call) => this.ring(call),
    send: ({ message }) => this.send(message),
    raw: ({ bytes }) => this.socket.send(Buffer.from(bytes, "hex"), { binary: false }),
    ping: ({ payload }) => this.socket.ping(payload),
    file: (order) => this.sendFile(order),
    drop: () => this.socket.terminate(),
    headers: ({ size }) => {
      const heavy = new WebSocket(url, { headers: { "X-Padding": "x".repeat(size) } });
      heavy.on("open", () => (tell("accepted", { size }), heavy.close()));
      heavy.on("error", (error) => tell("refused", { size, text: error.message }));
    },
  };
}

const phone = new Phone();
phone.connect();
const input = readline.createInterface({ input: process.stdin });
input.on("line", (line) => {
  const order = JSON.parse(line);
  phone.commands[order.do](order);
});
input.on("close", () => process.exit(0));
