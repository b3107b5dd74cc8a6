"""Serial ports for programs under Wine: pseudo terminals that a prefix knows as COM2 to COM9.

Modem lines, exclusive opening and unplugging come from the library of tools/serial_shim, which the
prefix was made with.
"""

import mmap
import os
import re
import select
import struct
import termios
import threading
import time
import tty
from pathlib import Path

# COM1 is the machine's own, and Wine knows no device names above COM9.
NUMBERS = range(2, 10)

INPUTS = {
    "CTS": termios.TIOCM_CTS,
    "DSR": termios.TIOCM_DSR,
    "RING": termios.TIOCM_RI,
    "RLSD": termios.TIOCM_CD,
}
OUTPUTS = {"DTR": termios.TIOCM_DTR, "RTS": termios.TIOCM_RTS}

RATES = {
    getattr(termios, name): int(name[1:]) for name in dir(termios) if re.fullmatch(r"B[1-9]\d*", name)
}


class LineState:
    """A pseudo terminal's state in the file that the shim maps, too: port_state.h there."""

    FIELDS = ("is_served", "inputs", "outputs", "is_unplugged", "breaks")

    def __init__(self, folder, number):
        # The same file again when the number is: the shim keeps its mapping.
        file = os.open(folder / str(number), os.O_RDWR | os.O_CREAT | os.O_CLOEXEC, 0o600)
        size = 4 * len(self.FIELDS)
        os.ftruncate(file, size)
        self._memory = mmap.mmap(file, size)
        os.close(file)
        for field in self.FIELDS:
            self[field] = 0
        self["is_served"] = 1

    def __getitem__(self, field):
        return struct.unpack_from("=I", self._memory, 4 * self.FIELDS.index(field))[0]

    def __setitem__(self, field, value):
        struct.pack_into("=I", self._memory, 4 * self.FIELDS.index(field), value)


class Device:
    """A pseudo terminal, plugged in for as long as it lives."""

    def __init__(self, state_folder):
        self._master, self._slave = os.openpty()
        tty.setraw(self._slave)
        os.set_blocking(self._master, False)
        self.path = os.ttyname(self._slave)
        self.state = LineState(state_folder, int(Path(self.path).name))
        self._wake = os.eventfd(0, os.EFD_CLOEXEC)
        self._is_closing = False
        self._changed = threading.Condition()
        self._written = bytearray()
        self._collector = threading.Thread(target=self._collect, daemon=True)
        self._collector.start()

    def _collect(self):
        """Takes what the program writes."""
        while not self._is_closing:
            ready, _, _ = select.select([self._wake, self._master], [], [])
            if self._wake in ready:
                os.eventfd_read(self._wake)
                continue
            data = os.read(self._master, 65536)
            with self._changed:
                self._written += data
                self._changed.notify_all()

    def take_written(self, count):
        """What the program wrote; waits until it is that many bytes."""
        with self._changed:
            self._changed.wait_for(lambda: len(self._written) >= count)
            data = bytes(self._written)
            self._written.clear()
        return data

    def feed(self, data, is_enough=lambda: False):
        """Hands bytes to the program, waiting while it does not read. The number that it took."""
        rest = memoryview(data)
        while rest and not is_enough():
            _, ready, _ = select.select([], [self._master], [], 0.02)
            if ready:
                try:
                    rest = rest[os.write(self._master, rest) :]
                except BlockingIOError:
                    pass
        return len(data) - len(rest)

    def baud_rate(self):
        return RATES.get(termios.tcgetattr(self._master)[5], 0)

    def close(self):
        self.state["is_unplugged"] = 1
        self._is_closing = True
        os.eventfd_write(self._wake, 1)
        self._collector.join()
        for file in (self._master, self._slave, self._wake):
            os.close(file)


class Stream:
    """Feeds pieces of text in the background, one each interval (seconds), until it is stopped."""

    def __init__(self, device, pieces, interval, rounds):
        self.left = sum(map(len, pieces))  # of the first round
        self._stop = threading.Event()
        self._thread = threading.Thread(
            target=self._run, args=(device, pieces, interval, rounds), daemon=True
        )
        self._thread.start()

    def _run(self, device, pieces, interval, rounds):
        due = time.monotonic()
        while rounds != 0:
            for piece in pieces:
                self.left -= device.feed(piece, self._stop.is_set)
                due += interval
                if self._stop.wait(max(0, due - time.monotonic())):
                    return
            rounds -= 1

    def stop(self):
        self._stop.set()
        self._thread.join()


class Port:
    """A COM port of a prefix, with a device that can be unplugged and plugged in again."""

    def __init__(self, prefix, number):
        self.number = number
        self._state_folder = Path(f"{prefix}.ttysim")  # as tools/wine-prefix names it
        self._link = link_of(prefix, number)
        self.stream = None
        self.device = None
        self.plug()

    def plug(self):
        if self.device is None:
            self.device = Device(self._state_folder)
            link_to(self._link, self.device.path)

    def unplug(self):
        self.stop_stream()
        if self.device is not None:
            self._link.unlink(missing_ok=True)
            self.device.close()
            self.device = None

    def start_stream(self, pieces, interval=0.0, rounds=-1):
        """All pieces so many times, for ever with -1."""
        self.stop_stream()
        if self.device is None:
            raise ValueError("unplugged")
        self.stream = Stream(self.device, pieces, interval, rounds)

    def stop_stream(self):
        if self.stream is not None:
            self.stream.stop()


def link_of(prefix, number):
    return Path(prefix) / "dosdevices" / f"com{number}"


def link_to(link, device):
    """Wine asks for the link at each opening, so it may change at any time."""
    link.unlink(missing_ok=True)
    link.symlink_to(device)
