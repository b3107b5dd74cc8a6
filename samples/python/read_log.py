"""Prints the last fix and the satellites of a receiver's log, with pywin32 (pip install pywin32).

    python read_log.py receiver.log

It asks, so it needs no events. For those: win32com.client.DispatchWithEvents with a class that has
methods OnGeneric(self, sentence), OnOnGpsFix(self, fix) and so on ("On" before each name), whose
arguments are to be wrapped by win32com.client.Dispatch, and pythoncom.PumpWaitingMessages() in a loop.
"""

import sys

import win32com.client

parser = win32com.client.gencache.EnsureDispatch("KavrelCE.NmeaParser")
constants = win32com.client.constants

parser.NoEvents = True
with open(sys.argv[1], encoding="ascii", errors="replace") as log:
    for line in log:
        # A line at a time: at most 512 characters a call. Reading has turned its end into "\n".
        parser.Parse(line.rstrip("\n") + "\r\n")

fix = parser.GetGpsFix(0, constants.kvFixNone)
if fix is None or fix.FixType == constants.kvFixNone:
    print("no fix")
else:
    print(fix.UTC, fix.Position.LatitudeString(0), fix.Position.LongitudeString(0))

satellites = parser.GetSatellites(0)
if satellites is not None:
    for satellite in satellites:
        used = "used" if satellite.UsedForFix else ""
        print(satellite.ID, satellite.Elevation, satellite.Azimuth, satellite.SNR, used)
