"""Gives a test program under Wine serial ports, and the far ends of them.

The program asks over a serial port, too, COM9: Wine's 32-bit programs have no sockets. A request is
a line that begins with a port's number, or with "-". Each is answered at once:

    request                                  answer
    - open                                   the number of a new port with a device plugged in
    N close                                  the port is no longer there
    N feed COUNT, then COUNT bytes           they are given to the program in the background
    N stream COUNT MS, then COUNT bytes      the same again and again, once each MS milliseconds;
                                             with 0 as fast as they are taken
    N left                                   how many bytes of a feed the program has not taken yet
    N stop                                   the feed or stream ends; a new one ends it, too
    N written                                COUNT, then COUNT bytes: what the program wrote
    N lines [CTS] [DSR] [RING] [RLSD]        sets the input lines, the others are off
    N outputs                                the output lines that are on: [DTR] [RTS]
    N baud                                   the rate that the program set
    N breaks                                 how many breaks it began
    N unplug, N plug

An answer is a text of 64 characters, filled up with spaces, that begins with "ok" or "error"; where
said so, bytes follow.
"""

import serial_ports

CONTROL = serial_ports.NUMBERS[-1]
ANSWER_SIZE = 64


class PortServer:
    """Serves the one program that opens COM9."""

    def __init__(self, prefix, left_out):
        self._prefix = prefix
        self._control = serial_ports.Port(prefix, CONTROL)
        # The numbers are taken in turn: programs may be slow to let go of one.
        self._free = [n for n in serial_ports.NUMBERS if n not in (CONTROL, *left_out)]
        self._ports = {}
        self._input = b""

    def serve_forever(self):
        while True:
            while b"\n" not in self._input:
                self._receive()
            line, self._input = self._input.split(b"\n", 1)
            self._serve(line.decode("ascii").split())

    def _receive(self):
        self._input += self._control.device.take_written(1)

    def _take_bytes(self, count):
        while len(self._input) < count:
            self._receive()
        data, self._input = self._input[:count], self._input[count:]
        return data

    def _serve(self, words):
        data = b""
        try:
            number, verb, *rest = words
            if verb in ("feed", "stream"):
                rest[0] = self._take_bytes(int(rest[0]))
            target = [] if number == "-" else [self._ports[number]]
            answer = getattr(self, "_" + verb)(*target, *rest)
            if isinstance(answer, bytes):
                answer, data = len(answer), answer
            text = "ok" if answer is None else f"ok {answer}"
        except (AttributeError, LookupError, OSError, TypeError, ValueError) as fault:
            text = f"error {fault!r}"
        header = text[:ANSWER_SIZE].ljust(ANSWER_SIZE).encode("ascii", "replace")
        self._control.device.feed(header + data)

    def _open(self):
        port = serial_ports.Port(self._prefix, self._free.pop(0))
        self._ports[str(port.number)] = port
        return port.number

    def _close(self, port):
        port.unplug()
        del self._ports[str(port.number)]
        self._free.append(port.number)

    def _feed(self, port, data):
        port.start_stream([data], rounds=1)

    def _stream(self, port, data, milliseconds):
        port.start_stream([data], int(milliseconds) / 1000)

    def _left(self, port):
        return port.stream.left

    def _stop(self, port):
        port.stop_stream()

    def _written(self, port):
        return port.device.take_written(0)

    def _lines(self, port, *names):
        port.device.state["inputs"] = sum(serial_ports.INPUTS[name] for name in names)

    def _outputs(self, port):
        lines = port.device.state["outputs"]
        return " ".join(name for name, bit in serial_ports.OUTPUTS.items() if lines & bit)

    def _baud(self, port):
        return port.device.baud_rate()

    def _breaks(self, port):
        return port.device.state["breaks"]

    def _unplug(self, port):
        port.unplug()

    def _plug(self, port):
        port.plug()
