"""The client of tools/checks/conformance: runs the cases of the suite, each over a connection of its own.

The cases were written for Python 2, where a text was a row of bytes. Here they work with strings in which every
character stands for one byte (Latin-1), and the client converts at its edge.
"""
import collections

from autobahn.twisted.websocket import WebSocketClientFactory, WebSocketClientProtocol
from autobahn.websocket.protocol import WebSocketProtocol
from twisted.internet import reactor

Message = collections.namedtuple('Message', 'barrier text is_binary')
Outcome = collections.namedtuple('Outcome', 'case behavior close result')

# Cases that mostly wait run beside each other; those of category 9 measure time and run alone.
AT_ONCE = 8


def as_bytes(text):
    return text if isinstance(text, bytes) or text is None else text.encode('latin-1')


def id_of(case):
    return case.__name__[len('Case'):].replace('_', '.')


class Client(WebSocketClientProtocol):
    """One connection. Offers the operations by which a case drives it, and reports to the case."""

    echoes = True

    def __init__(self):
        super().__init__()
        self.case = None
        self.connectionWasOpen = False
        self.createWirelog = True
        self.txFrameStats = collections.Counter()
        # The data messages that were sent and not answered yet, in order, and the one that is being sent.
        self.sent = collections.deque()
        self.parts = []
        self.part_is_binary = False
        self.barriers = 0

    # What cases call.

    def enableWirelog(self, enable):
        self.createWirelog = enable

    def later(self, delay, act):
        reactor.callLater(delay, lambda: self.state != WebSocketProtocol.STATE_CLOSED and act())

    def continueLater(self, delay, act, _tag=None):
        self.later(delay, act)

    def killAfter(self, delay):
        self.later(delay, self._fail_connection)

    def closeAfter(self, delay):
        self.later(delay, self.sendClose)

    def sendMessage(self, payload, isBinary=False, **options):
        super().sendMessage(as_bytes(payload), isBinary, **options)

    def sendMessageFrameData(self, payload, sync=False):
        super().sendMessageFrameData(as_bytes(payload), sync)

    def sendCloseFrame(self, code=None, reasonUtf8=None, isReply=False):
        super().sendCloseFrame(code, as_bytes(reasonUtf8), isReply)

    def sendFrame(self, opcode, payload=b'', fin=True, **options):
        payload = as_bytes(payload)
        if options.get('payload_len') == 0:
            payload, options['payload_len'] = b'', None
        super().sendFrame(opcode, payload, fin, **options)
        self.txFrameStats[opcode] += 1
        if opcode <= 2:
            self.did_send_data(opcode, payload, fin, options.get('payload_len'))

    def did_send_data(self, opcode, payload, fin, length):
        if opcode != 0:
            self.parts = []
            self.part_is_binary = opcode == 2
        if length:
            payload = (payload * (length // len(payload) + 1))[:length]
        self.parts.append(payload)
        if fin:
            self.barriers += 1
            barrier = b'barrier %d' % self.barriers
            text = b''.join(self.parts).decode('latin-1')
            self.sent.append(Message(barrier, text, self.part_is_binary))
            # An answer to binary bytes comes as text, see `onMessage`.
            self.utf8validateIncoming = not self.part_is_binary
            if not self.echoes:
                super().sendFrame(9, barrier)

    # What comes back.

    def onOpen(self):
        self.connectionWasOpen = True
        self.case.onOpen()

    def onMessage(self, payload, isBinary):
        # The server sends nothing but text, so the kind of an echo is that of the message.
        answered = self.sent.popleft() if self.sent else None
        self.case.onMessage(payload.decode('latin-1'), answered.is_binary if answered else isBinary)

    def onPong(self, payload):
        self.case.onPong(payload.decode('latin-1'))

    def onClose(self, wasClean, code, reason):
        self.case.onClose(wasClean, code, reason)

    def connectionLost(self, reason):
        super().connectionLost(reason)
        self.case.onConnectionLost(self.failedByMe)
        self.factory.ended(self.case)


class SilentClient(Client):
    """For a server that reads messages and does not echo them: a ping follows each, and its pong stands for the
    echo. A message before it that broke the protocol, or was taken for broken, would have ended the connection."""

    echoes = False

    def onMessage(self, payload, isBinary):
        pass  # The program's own messages, as its welcome.

    def onPong(self, payload):
        if self.sent and payload == self.sent[0].barrier:
            message = self.sent.popleft()
            self.case.onMessage(message.text, message.is_binary)
        else:
            super().onPong(payload)


class Factory(WebSocketClientFactory):
    def __init__(self, url, case_class, protocol, done):
        super().__init__(url)
        # Long enough for a busy machine; a server that leaves the closing to the client is still noticed.
        self.setProtocolOptions(failByDrop=False, openHandshakeTimeout=20, closeHandshakeTimeout=10,
                                serverConnectionDropTimeout=10)
        self.noisy = False
        self.case_class = case_class
        self.protocol = protocol
        self.done = done

    def buildProtocol(self, address):
        client = super().buildProtocol(address)
        client.case = self.case_class(client)
        return client

    def ended(self, case):
        self.done(Outcome(id_of(self.case_class), case.behavior, case.behaviorClose, case.result))

    def clientConnectionFailed(self, connector, reason):
        self.done(Outcome(id_of(self.case_class), 'FAILED', 'FAILED', reason.getErrorMessage()))


def run(port, cases, echoes):
    """Runs the case classes against a server on this computer and returns an Outcome of each. Can be called once in
    a process."""
    quick = [case for case in cases if not id_of(case).startswith('9.')]
    waiting = collections.deque(quick + [case for case in cases if case not in quick])
    outcomes = []
    running = set()

    def start_next():
        while waiting and len(running) < (1 if id_of(waiting[0]).startswith('9.') else AT_ONCE):
            start(waiting.popleft())
        if not waiting and not running and reactor.running:
            reactor.stop()

    def start(case):
        def done(outcome):
            outcomes.append(outcome)
            running.remove(case)
            reactor.callLater(0, start_next)

        running.add(case)
        factory = Factory(f'ws://127.0.0.1:{port}/', case, Client if echoes else SilentClient, done)
        reactor.connectTCP('127.0.0.1', port, factory)

    reactor.callWhenRunning(start_next)
    reactor.run()
    return outcomes
