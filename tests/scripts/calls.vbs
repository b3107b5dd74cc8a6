' What a plain script does in its own way: variables, arguments left out, out arguments, objects,
' For Each, and errors with number, text and source.
Option Explicit
Dim parser, position, failures
failures = 0

Set parser = CreateObject("KavrelCE.NmeaParser")
Dim value
value = 12
parser.GpsDatum = value
parser.GPSDATUM = CByte(1)
parser.EventInterval , 5
parser.Parse
parser.Parse value

' The results of queries.
parser.NoEvents = True
Same "a fix from nowhere", parser.GetGpsFix(0, 0) Is Nothing, True
parser.Parse "$GPRMC,123519,A,4807.038,N,01131.000,E,10,084.4,230394,003.1,W" & vbCrLf
parser.Parse "$GPGSA,A,3,02,,,,,,,,,,,,2.5,1.3,2.1" & vbCrLf
parser.Parse "$GPGSV,1,1,03,01,40,083,46,02,17,308,41,24,5,10,3" & vbCrLf
Dim satellites, satellite, text
Set satellites = parser.GetSatellites(0)
For Each satellite In satellites
    text = text & satellite.ID & " " & satellite.Elevation & " " & satellite.Azimuth & " " & _
        satellite.SNR & " " & CInt(satellite.UsedForFix) & ";"
Next
' A true flag is 1, not -1.
Same "For Each", text, "1 40 83 46 0;2 17 308 41 1;24 5 10 3 0;"
Same "default member", satellites("2").ID & satellites(3).ID & satellites.Item(1).ID, "2241"
Dim fix
Set fix = parser.GetGpsFix(0, 0)
Same "date", Year(fix.UTC) & "-" & Month(fix.UTC) & "-" & Day(fix.UTC), "1994-3-23"
Same "time", Hour(fix.UTC) & ":" & Minute(fix.UTC) & ":" & Second(fix.UTC), "12:35:19"

' Out arguments, and arguments left out in between.
Set position = CreateObject("KavrelCE.Position")
position.Latitude = 48.1173
Dim degrees, minutes, seconds, hemisphere
position.LatitudeDMS degrees, minutes, seconds, hemisphere
Same "parts", degrees & " " & minutes & " " & CInt(seconds * 100) & " " & hemisphere, "48 7 228 N"
position.SetLongitudeDMS 9, , , "E"
Same "parts left out", position.Longitude, 9

' Objects are put by reference.
Dim datum, grid
Set datum = CreateObject("KavrelCE.CustomDatum")
datum.DeltaX = 375
Set grid = CreateObject("KavrelCE.CustomGrid")
Set grid.CustomDatum = datum
Same "the grid's datum", grid.Datum & " " & grid.CustomDatum.DeltaX, "28 375"
Set position.CustomDatum = datum
Set position.CustomGrid = grid
Same "custom ones", position.Datum & " " & position.Grid, "28 52"

On Error Resume Next
parser.GpsDatum = Array(1, 2)
ExpectError "an array", &H80042713, "Unknown datum!", "NmeaParser Class"
Set satellite = satellites(4)
ExpectError "no source", &H80042714, "Index out of bounds", ""
Set position.CustomGrid = datum
ExpectError "a datum", &H80004002, "Parameter not a valid object!", "Position Class"
CreateObject "KavrelCE.GpsFix"
If Err.Number = 0 Then Fail "a class that cannot be created"
On Error GoTo 0

If failures = 0 Then WScript.Echo "SCRIPT OK"

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
    failures = failures + 1
End Sub
