' Prints what a receiver on a serial port says, as the parser's events bring it:
'     live_events.vbs PORT RATE
' Needs a script host with events, one that offers WScript.ConnectObject, and whose Sleep dispatches
' messages: events of the port arrive only meanwhile.
Option Explicit
Const kvEventGpsFix = 5

Dim parser, sentences, fixes, seconds
sentences = 0
fixes = 0
Set parser = CreateObject("KavrelCE.NmeaParser")
WScript.ConnectObject parser, "gps_"
parser.ComPort = WScript.Arg(0)
parser.BaudRate = WScript.Arg(1)
' At most one fix each ten seconds of the receiver's time.
parser.EventInterval 10000, kvEventGpsFix
parser.PortEnabled = True
' Five seconds, or until there were enough.
seconds = 0
Do While seconds < 5 And fixes < 5
    WScript.Sleep 1000
    seconds = seconds + 1
Loop
parser.PortEnabled = False
WScript.DisconnectObject parser

WScript.Echo sentences & " sentences"
If fixes = 0 Then WScript.Quit 1
WScript.Echo "SCRIPT OK"

Sub gps_Generic(sentence)
    sentences = sentences + 1
End Sub

Sub gps_OnComStatus(status)
    Dim text
    text = "port " & status.ComPort & " at " & status.BaudRate & " baud"
    ' A true flag is 1: test for non-zero.
    If status.ValidNMEA Then text = text & ", a receiver"
    If status.ValidFix Then text = text & ", with a fix"
    WScript.Echo text
End Sub

Sub gps_OnGpsFix(fix)
    If fix.FixType = 0 Then Exit Sub
    fixes = fixes + 1
    WScript.Echo fix.UTC & ": " & fix.Position.LatitudeString(0) & ", " & fix.Position.LongitudeString(0)
End Sub
