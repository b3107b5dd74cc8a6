' Prints the satellites in view at the end of a receiver's log, and its last fix, under cscript:
'     cscript //nologo sky_table.vbs receiver.log
' Asks for them with the blocking queries, as hosts without events do.
Option Explicit

Dim parser, files, log, satellites, satellite, fix, quality

Set parser = CreateObject("KavrelCE.NmeaParser")
parser.NoEvents = True

Set files = CreateObject("Scripting.FileSystemObject")
Set log = files.OpenTextFile(WScript.Arguments(0))
Do Until log.AtEndOfStream
    parser.Parse log.ReadLine() & vbCrLf
Loop

Set fix = parser.GetGpsFix(0, 0)
If fix Is Nothing Then
    WScript.Echo "no fix"
Else
    WScript.Echo "fix type " & fix.FixType & " at " & fix.Position.LatitudeString(0) & ", " & fix.Position.LongitudeString(0)
End If
Set quality = parser.GetQuality(0)
If Not quality Is Nothing Then WScript.Echo "PDOP " & quality.PDOP & ", HDOP " & quality.HDOP & ", VDOP " & quality.VDOP

Set satellites = parser.GetSatellites(0)
If Not satellites Is Nothing Then
    WScript.Echo satellites.Count & " satellites"
    WScript.Echo " ID  elev  azim   SNR  used"
    For Each satellite In satellites
        WScript.Echo Right("   " & satellite.ID, 3) & Right("      " & satellite.Elevation, 6) & _
            Right("      " & satellite.Azimuth, 6) & Right("      " & satellite.SNR, 6) & Used(satellite)
    Next
End If
WScript.Echo "SCRIPT OK"

' A true flag is 1: test for non-zero.
Function Used(satellite)
    Used = ""
    If satellite.UsedForFix Then Used = "   yes"
End Function
