' Converts lines of latitude and longitude (degrees, on WGS 84) to a grid, or back:
'     cscript //nologo grid_converter.vbs <grid> <file> [zone | back]
'     cscript //nologo grid_converter.vbs british places.txt
'     cscript //nologo grid_converter.vbs british british.txt back
' A grid is a name of the list below or a number from 1 to 51. Forward lines hold latitude and
' longitude, lines for "back" hold easting, northing and, on grids with zones, the zone. What goes
' out in one direction can go in again in the other.
Option Explicit

Const kWgs84 = 1

Dim gridNumber, isBack, zone, files, input, line, parts

If WScript.Arguments.Count < 2 Then Usage
gridNumber = GridByName(LCase(WScript.Arguments(0)))
If gridNumber = 0 Then
    WScript.Echo "Unknown grid: " & WScript.Arguments(0)
    Usage
End If
isBack = False
zone = ""
If WScript.Arguments.Count > 2 Then
    If LCase(WScript.Arguments(2)) = "back" Then
        isBack = True
    Else
        zone = WScript.Arguments(2)
    End If
End If

Set files = CreateObject("Scripting.FileSystemObject")
Set input = files.OpenTextFile(WScript.Arguments(1))
Do Until input.AtEndOfStream
    line = Trim(input.ReadLine())
    If line <> "" And Left(line, 1) <> "#" Then
        parts = Split(line, " ")
        If UBound(parts) < 1 Then
            WScript.Echo "# not understood: " & line
        ElseIf isBack Then
            ConvertBack parts
        Else
            ConvertForward parts
        End If
    End If
Loop
WScript.Echo "# done"

Sub ConvertForward(parts)
    Dim position, easting
    Set position = CreateObject("KavrelCE.Position")
    On Error Resume Next
    position.Datum = kWgs84
    position.Grid = gridNumber
    If zone <> "" Then position.Zone = zone
    position.Latitude = parts(0)
    position.Longitude = parts(1)
    easting = position.Easting
    If Err.Number <> 0 Then
        WScript.Echo "# " & parts(0) & " " & parts(1) & ": " & Err.Description
    Else
        WScript.Echo Trim(Fixed(easting, 3) & " " & Fixed(position.Northing, 3) & " " & position.Zone)
    End If
End Sub

Sub ConvertBack(parts)
    Dim position, latitude
    Set position = CreateObject("KavrelCE.Position")
    On Error Resume Next
    position.Grid = gridNumber
    ' The zone comes first: easting and northing mean nothing without it.
    If UBound(parts) >= 2 Then position.Zone = parts(2)
    position.Easting = parts(0)
    position.Northing = parts(1)
    latitude = position.Latitude
    If Err.Number <> 0 Then
        WScript.Echo "# " & parts(0) & " " & parts(1) & ": " & Err.Description
    Else
        WScript.Echo Fixed(latitude, 8) & " " & Fixed(position.Longitude, 8)
    End If
End Sub

' A number with decimals behind a point, whatever the system's settings.
Function Fixed(value, decimals)
    Dim scaled, digits, sign
    sign = ""
    If value < 0 Then sign = "-"
    scaled = Int(Abs(value) * 10 ^ decimals + 0.5)
    digits = CStr(scaled)
    Do While Len(digits) <= decimals
        digits = "0" & digits
    Loop
    Fixed = sign & Left(digits, Len(digits) - decimals) & "." & Right(digits, decimals)
End Function

Function GridByName(name)
    Select Case name
        Case "utm", "utmnorth" GridByName = 1
        Case "utmsouth" GridByName = 2
        Case "british" GridByName = 3
        Case "irish" GridByName = 4
        Case "itm" GridByName = 5
        Case "rt90" GridByName = 6
        Case "swiss" GridByName = 7
        Case "swisslv95" GridByName = 8
        Case "finnish" GridByName = 11
        Case "luxembourg" GridByName = 14
        Case "mga94" GridByName = 16
        Case "nztm" GridByName = 20
        Case "nzmg" GridByName = 21
        Case "belgian" GridByName = 22
        Case "lambert93" GridByName = 27
        Case "gausskrueger" GridByName = 29
        Case "stateplane27" GridByName = 30
        Case "stateplane83" GridByName = 31
        Case "dutch" GridByName = 34
        Case "italianwest" GridByName = 35
        Case "italianeast" GridByName = 36
        Case "danish" GridByName = 48
        Case Else
            GridByName = 0
            If IsNumeric(name) Then GridByName = CInt(name)
    End Select
End Function

Sub Usage()
    WScript.Echo "usage: grid_converter.vbs <grid> <file> [zone | back]"
    WScript.Quit 2
End Sub
