"""Gives a test program under Wine serial ports, and the far ends of them, over a local socket.

A connection is a port: it comes with the connection and goes with it, so every test has fresh
ones, and none is left over by a program that crashes. The client sends requests of one line, some
with bytes behind it, and gets an answer to each:

    request                                  answer, one line and bytes
    feed COUNT MS, then COUNT bytes          TAKEN TIME: how many the program's side took within
                                             MS milliseconds; the time before the first
    stream COUNT MS, then COUNT bytes        the bytes over and over, once each MS milliseconds, in
                                             the background; with 0 as fast as they are taken
    stop                                     the stream ends
    written COUNT MS                         N, then N bytes: what the program wrote, as soon as it
                                             is COUNT bytes, or what there is after MS milliseconds
    listen 0|1                               whether what the program writes is taken at all
    lines [CTS] [DSR] [RING] [RLSD]          sets the input lines, the others are off
    outputs                                  the output lines that are on: [DTR] [RTS]
    baud                                     the rate that the program set
    breaks                                   how many breaks it began
    unplug, plug
    time                                     TIME, in nanoseconds

The first answer, to no request, is the port's number. An answer begins with "ok" or "error".
"""

import socketserver
import threading
import time

import serial_ports


class Session(socketserver.StreamRequestHandler):
    disable_nagle_algorithm = True

    def handle(self):
        self.port = self.server.take_port()
        try:
            self._answer(str(self.port.number))
            while line := self.rfile.readline():
                self._serve(line.decode("ascii").split())
        finally:
            self.port.unplug()
            self.server.give_back(self.port)

    def _serve(self, words):
        try:
            answer, data = getattr(self, "do_" + words[0])(*words[1:]), b""
            if isinstance(answer, bytes):
                answer, data = str(len(answer)), answer
            self._answer(answer, data)
        except (AttributeError, KeyError, OSError, TypeError, ValueError) as fault:
            self._send(f"error {' '.join(words)}: {fault!r}\n".encode())

    def _answer(self, text, data=b""):
        self._send(f"ok {text or ''}\n".encode("ascii") + data)

    def _send(self, data):
        self.wfile.write(data)
        self.wfile.flush()

    def do_feed(self, count, milliseconds):
        data = self.rfile.read(int(count))
        deadline = time.monotonic() + int(milliseconds) / 1000
        begun = time.monotonic_ns()
        taken = self.port.device.feed(data, lambda: time.monotonic() > deadline)
        return f"{taken} {begun}"

    def do_stream(self, count, milliseconds):
        self.port.start_stream([self.rfile.read(int(count))], int(milliseconds) / 1000)

    def do_stop(self):
        self.port.stop_stream()

    def do_written(self, count, milliseconds):
        return self.port.device.take_written(int(count), int(milliseconds) / 1000)

    def do_listen(self, is_on):
        self.port.device.listen(is_on == "1")

    def do_lines(self, *names):
        self.port.device.state["inputs"] = sum(serial_ports.INPUTS[name] for name in names)

    def do_outputs(self):
        lines = self.port.device.state["outputs"]
        return " ".join(name for name, bit in serial_ports.OUTPUTS.items() if lines & bit)

    def do_baud(self):
        return str(self.port.device.baud_rate())

    def do_breaks(self):
        return str(self.port.device.state["breaks"])

    def do_unplug(self):
        self.port.unplug()

    def do_plug(self):
        self.port.plug()

    def do_time(self):
        return str(time.monotonic_ns())


class PortServer(socketserver.ThreadingTCPServer):
    daemon_threads = True

    def __init__(self, prefix):
        super().__init__(("127.0.0.1", 0), Session)
        self._prefix = prefix
        self._free = list(serial_ports.NUMBERS)
        self._lock = threading.Lock()

    def take_port(self):
        with self._lock:
            # The one that was given back longest ago: programs may be slow to let go of it.
            return serial_ports.Port(self._prefix, self._free.pop(0))

    def leave_out(self, number):
        """Somebody else has that one."""
        self._free.remove(number)

    def give_back(self, port):
        with self._lock:
            self._free.append(port.number)
