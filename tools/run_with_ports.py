#!/usr/bin/env python3
"""Runs a command in a Wine prefix while there are serial ports for it.

    run_with_ports.py [--receiver FILE [--every MS] | --device PATH]
                      <prefix folder> command [argument]...

The command finds a server of ports behind COM9; see port_server.py. The options add a port whose
number replaces "{port}" in the command's arguments:

--receiver FILE  a receiver that says the file's text over and over, as fast as it is read, or with
                 --every one fix each that many milliseconds
--device PATH    a device of this machine, such as /dev/ttyUSB0

Only one such run at a time can have a prefix.
"""

import argparse
import subprocess
import sys
import threading
from pathlib import Path

import serial_ports
from port_server import PortServer


def fixes(text):
    """The text in pieces of one fix each: each begins with the type that the text begins with."""
    lines = text.splitlines(keepends=True)
    start = lines[0][3:6]
    pieces = []
    for line in lines:
        if line[3:6] == start:
            pieces.append(b"")
        pieces[-1] += line
    return pieces


def add_port(prefix, options):
    """The number of the port that the options ask for."""
    number = serial_ports.NUMBERS[0]
    if options.device:
        serial_ports.link_to(serial_ports.link_of(prefix, number), options.device)
    else:
        pieces = fixes(Path(options.receiver).read_bytes())
        serial_ports.Port(prefix, number).start_stream(pieces, options.every / 1000)
    return number


def remove_links(prefix):
    for number in serial_ports.NUMBERS:
        serial_ports.link_of(prefix, number).unlink(missing_ok=True)


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("--receiver")
    parser.add_argument("--every", type=int, default=0)
    parser.add_argument("--device")
    parser.add_argument("prefix", type=Path)
    parser.add_argument("command", nargs=argparse.REMAINDER)
    options = parser.parse_args()
    prefix = options.prefix.resolve()

    remove_links(prefix)
    command, left_out = options.command, []
    if options.receiver or options.device:
        number = add_port(prefix, options)
        left_out = [number]
        command = [word.replace("{port}", str(number)) for word in command]
    server = PortServer(prefix, left_out)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    runner = Path(__file__).with_name("run-wine")
    try:
        return subprocess.run([runner, prefix, *command], check=False).returncode
    finally:
        remove_links(prefix)


if __name__ == "__main__":
    sys.exit(main())
