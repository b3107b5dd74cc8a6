' Datums and grids of the script's own.
Option Explicit
Dim position, failures
failures = 0
Set position = CreateObject("KavrelCE.Position")
position.Latitude = 52

Dim datum, grid
Set datum = CreateObject("KavrelCE.CustomDatum")
datum.SemiMajorAxis = 6377563.396
datum.E2 = 0.00667054
datum.DeltaX = 375
datum.DeltaY = -111
datum.DeltaZ = 431
datum.RotX = 1
Near "rotation", datum.RotX, 1
datum.RotX = 0
Set grid = CreateObject("KavrelCE.CustomGrid")
Set grid.CustomDatum = datum
Same "datum of the grid", grid.Datum, 28
Near "the grid's own datum", grid.CustomDatum.DeltaX, 375
grid.Algorithm = 3
grid.ScaleFactor = 0.9996
grid.FalseEasting = 500000
grid.LongitudeOfOrigin = 9 * 3.14159265358979 / 180
Set position.CustomDatum = datum
Same "custom datum", position.Datum, 28
position.Longitude = 9
Set position.CustomGrid = grid
Near "custom grid", position.Easting, 500000

If failures = 0 Then WScript.Echo "SCRIPT OK"

Sub Same(what, found, wanted)
    If found = wanted Then Exit Sub
    Fail what & ": '" & found & "' instead of '" & wanted & "'"
End Sub

Sub Near(what, found, wanted)
    If Abs(found - wanted) < 0.001 Then Exit Sub
    Fail what & ": '" & found & "' instead of '" & wanted & "'"
End Sub

Sub Fail(what)
    WScript.Echo what
    failures = failures + 1
End Sub
