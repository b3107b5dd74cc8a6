' The satellites in view and the other results of the blocking queries, from a plain script.
Option Explicit
Dim parser, satellites, satellite, fix, movement, text
Set parser = CreateObject("KavrelCE.NmeaParser")
parser.NoEvents = True
If Not parser.GetGpsFix(0, 0) Is Nothing Then Fail "a fix from nowhere"
If Not parser.GetSatellites(10) Is Nothing Then Fail "satellites from nowhere"

parser.Parse "$GPRMC,123519,A,4807.038,N,01131.000,E,10,084.4,230394,003.1,W" & vbCrLf
parser.Parse "$GPGSA,A,3,02,,,,,,,,,,,,2.5,1.3,2.1" & vbCrLf
parser.Parse "$GPGSV,2,1,05,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228,45" & vbCrLf
If Not parser.GetSatellites(0) Is Nothing Then Fail "half a picture"
parser.Parse "$GPGSV,2,2,05,24,5,10,3" & vbCrLf

Set satellites = parser.GetSatellites(0)
For Each satellite In satellites
    text = text & satellite.ID & " " & satellite.Elevation & " " & satellite.Azimuth & " " & _
        satellite.SNR
    If satellite.UsedForFix Then text = text & " used"
    text = text & ";"
Next
Same "For Each", text, "1 40 83 46;2 17 308 41 used;12 7 344 39;14 22 228 45;24 5 10 3;"
text = ""
Dim i
For i = 1 To satellites.Count
    text = text & satellites(i).ID & ";"
Next
Same "by index", text, "1;2;12;14;24;"
Same "default member with text", satellites("2").ID, 2
Same "by name", satellites.Item(3).ID, 12
' A true flag is 1, not -1.
Same "true as a number", CInt(satellites(2).UsedForFix), 1
If satellites(1).UsedForFix Then Fail "used"

Set fix = parser.GetGpsFix(0, 0)
Same "fix type", fix.FixType, 2
Same "date", Year(fix.UTC) & "-" & Month(fix.UTC) & "-" & Day(fix.UTC), "1994-3-23"
Same "time", Hour(fix.UTC) & ":" & Minute(fix.UTC) & ":" & Second(fix.UTC), "12:35:19"
fix.Position.Move 1000, 0, 1
Same "position", fix.Position.LatitudeString(0), "48 7'2.28 N"
Same "dilution", parser.GetQuality(0).PDOP, 2.5

Set movement = parser.GetMovement(0)
Same "speed", movement.Speed, 10
On Error Resume Next
text = movement.Speed(7)
ExpectError "unknown unit", &H80042713, "Invalid parameter!", ""
Same "heading after that", movement.Heading, 84.4
Set satellite = satellites(0)
ExpectError "index 0", &H80042714, "Index out of bounds", ""
Set satellite = satellites(6)
ExpectError "index 6", &H80042714, "Index out of bounds", ""
parser.NoEvents = False
Set fix = parser.GetGpsFix(0, 0)
ExpectError "query with events", &H80042716, "NoEvents must be set!", "NmeaParser Class"
Same "status", parser.GetComStatus().ComPort, 0
On Error GoTo 0
WScript.Echo "SCRIPT OK"

Sub Same(what, found, wanted)
    If found <> wanted Then Fail what & ": '" & found & "' instead of '" & wanted & "'"
End Sub

Sub ExpectError(what, number, description, source)
    If Err.Number <> number Or Err.Description <> description Or Err.Source <> source Then
        Fail what & ": " & Hex(Err.Number) & " '" & Err.Description & "' from '" & Err.Source & "'"
    End If
    Err.Clear
End Sub

Sub Fail(what)
    WScript.Echo what
    WScript.Quit 1
End Sub
