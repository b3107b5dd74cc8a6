' Positions from a plain script: properties, out arguments, objects of the script, errors.
Option Explicit
Dim position, other, failures
failures = 0
Set position = CreateObject("KavrelCE.Position")

Same "modified at first", position.ModifiedCount, 0
position.Latitude = 48.1173
position.Longitude = "-11.5"
Near "radians", position.LatitudeRads, 0.83980531211
Same "text", position.LatitudeString(0), "48 7'2.28 N"
Same "text of the longitude", position.LongitudeString(0), "11 30'0.00 W"
Same "text without hemisphere", position.LongitudeString(1), "01130.00001"
Same "modified", position.ModifiedCount, 2

Dim degrees, minutes, seconds, hemisphere
position.LatitudeDMS degrees, minutes, seconds, hemisphere
Same "degrees", degrees, 48
Same "minutes", minutes, 7
Near "seconds", seconds, 2.28
Same "hemisphere", hemisphere, "N"
position.LongitudeDMS degrees, minutes, seconds, hemisphere
Same "hemisphere of the longitude", degrees & hemisphere, "11W"

position.SetLatitudeDMS 59, 30, 0, "S"
Near "set by parts", position.Latitude, -59.5
position.SetLongitudeDMS 9, , , "E"
Near "parts left out", position.Longitude, 9
position.SetAltitude 0, 12.5
position.SetAltitude 1, 60
Near "altitude", position.Altitude, 12.5
Near "ellipsoidal height", position.Altitude(1), 60

' Grids and zones.
position.Latitude = 52
position.Grid = 1
Same "zone", position.Zone, "32U"
Near "on the meridian", position.Easting, 500000
position.Zone = "31U"
Same "fixed zone", position.Zone, "31U"
position.Zone = 32
Same "zone put back", position.Zone, "32U"
position.Easting = 600000
Near "back", Int(position.Longitude * 100), 1045

' Other positions.
Set other = position.Copy
Same "modified count of a copy", other.ModifiedCount, 0
' A true flag is 1, not -1.
Same "same grid", CInt(other.IsSameGrid(position)), 1
other.Datum = 3
Same "another datum", CInt(other.IsSameDatum(position)), 0
Near "the same point on two datums", position.Distance(other, 1) / 1000, 0
other.MakeSameDatum position
Same "datum taken over", other.Datum, 1
other.Move 1000, 90, 1
Near "moved", position.Distance(other, 1), 1000
Same "direction", CInt(position.Bearing(other, 1)), 90

Dim datum
Set datum = CreateObject("KavrelCE.CustomDatum")
On Error Resume Next
position.Latitude = 91
ExpectError "latitude", &H80042713, "Invalid latitude. Must be between -PI/2 and PI/2"
position.SetLatitudeDMS -1, 0, 0, "N"
ExpectError "degrees", &H80042713, "Invalid value of Degrees. Must be between 0 and 90!"
position.Datum = 28
ExpectError "datum 28", &H80042713, "Set Position.CustomDatum instead!"
position.Grid = 53
ExpectError "grid 53", &H80042713, "Unknown grid!"
position.Grid = 1
position.Zone = 61
ExpectError "zone 61", &H80042713, "Invalid Zone for this grid!"
other = position.Altitude(2)
ExpectError "altitude", &H80042713, "Invalid parameter!"
position.Distance Nothing, 1
ExpectError "distance to nothing", &H80042713, "Position may not be null."
position.Distance position, 4
ExpectError "distance by method 4", &H80042713, "Unknown method to calculate distance."
position.Distance datum, 1
ExpectError "distance to a datum", &H80004002, "Parameter not a valid object!"
Set position.CustomDatum = Nothing
ExpectError "no datum", &H80042713, "CustomDatum may not be null."
Set position.CustomGrid = datum
ExpectError "a datum for a grid", &H80004002, "Parameter not a valid object!"
On Error GoTo 0

If failures = 0 Then WScript.Echo "SCRIPT OK"

Sub Same(what, found, wanted)
    If found = wanted Then Exit Sub
    Fail what & ": '" & found & "' instead of '" & wanted & "'"
End Sub

Sub Near(what, found, wanted)
    If Abs(found - wanted) < 0.001 Then Exit Sub
    Fail what & ": '" & found & "' instead of '" & wanted & "'"
End Sub

Sub ExpectError(what, number, description)
    If Err.Number <> number Or Err.Description <> description Or Err.Source <> "Position Class" Then
        Fail what & ": " & Hex(Err.Number) & " '" & Err.Description & "' from '" & Err.Source & "'"
    End If
    Err.Clear
End Sub

Sub Fail(what)
    WScript.Echo what
    failures = failures + 1
End Sub
