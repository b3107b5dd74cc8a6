' Asks a receiver on a serial port where it is, under cscript:
'     cscript //nologo live_fix.vbs PORT [RATE]
' cscript cannot receive events, so the script asks and waits.
Option Explicit
Const kvFix2D = 2
Const kvSpeedKilometresPerHour = 2
Const WaitMilliseconds = 5000

Dim parser, fix, movement, i, fixes
Set parser = CreateObject("KavrelCE.NmeaParser")
parser.NoEvents = True
parser.ComPort = WScript.Arguments(0)
If WScript.Arguments.Length > 1 Then parser.BaudRate = WScript.Arguments(1)
parser.PortEnabled = True

fixes = 0
For i = 1 To 4
    Set fix = parser.GetGpsFix(WaitMilliseconds, kvFix2D)
    If fix Is Nothing Then
        WScript.Echo "no fix within " & WaitMilliseconds & " ms"
    Else
        fixes = fixes + 1
        WScript.Echo fix.UTC & ": " & fix.Position.LatitudeString(0) & ", " & fix.Position.LongitudeString(0)
    End If
Next
Set movement = parser.GetMovement(WaitMilliseconds)
If Not movement Is Nothing Then WScript.Echo "moving at " & Round(movement.Speed(kvSpeedKilometresPerHour)) & " km/h, heading " & movement.Heading
WScript.Echo "port " & parser.GetComStatus.ComPort & " at " & parser.GetComStatus.BaudRate & " baud"
parser.PortEnabled = False

If fixes = 0 Then WScript.Quit 1
WScript.Echo "SCRIPT OK"
