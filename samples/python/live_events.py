"""Prints what a receiver on a serial port says, with comtypes (pip install comtypes).

    python live_events.py 3 4800

Python and the registered DLL must be of the same width. Events come on the thread that created the
parser, and only while that thread dispatches messages: PumpEvents does.
"""

import sys

import comtypes.client

parser = comtypes.client.CreateObject("KavrelCE.NmeaParser")
# Made from the type library by the line above: all constants by name.
from comtypes.gen import KavrelCE as kv  # noqa: E402


class Sink:
    """A method per event; those that are missing are not raised."""

    sentences = 0

    def Generic(self, sentence):
        self.sentences += 1

    def OnGpsFix(self, fix):
        if fix.FixType == kv.kvFixNone:
            return
        place = fix.Position
        print(fix.UTC, place.LatitudeString(kv.kvFormatDMS), place.LongitudeString(kv.kvFormatDMS))

    def OnComStatus(self, status):
        print("port", status.ComPort, "fix" if status.ValidFix else "no fix")


def main():
    sink = Sink()
    connection = comtypes.client.GetEvents(parser, sink)
    parser.ComPort = int(sys.argv[1])
    parser.BaudRate = int(sys.argv[2])
    try:
        parser.PortEnabled = True
    except comtypes.COMError as error:
        # ("Comm port does not exist", source, ...); the library's code is in the low bits.
        sys.exit(f"{error.details[0]} ({error.hresult & 0xFFFF})")
    try:
        comtypes.client.PumpEvents(10)
    finally:
        parser.PortEnabled = False
        del connection  # ends the events
    print(sink.sentences, "sentences")


main()
