' Settings of the parser from a plain script: conversions of arguments, and errors with number,
' text and source.
Option Explicit
Dim parser, failures
failures = 0
Set parser = CreateObject("KavrelCE.NmeaParser")

' Values that convert.
parser.GpsDatum = 3
parser.GpsDatum = "28"
parser.GpsDatum = 3.7
parser.GPSDATUM = CByte(1)
parser.ComPort = 0
parser.ComPort = -1
parser.BaudRate = "9600"
parser.AllEventsGeneric = True
parser.AllEventsGeneric = 0
parser.ChecksumMandatory = False
parser.NoEvents = True
parser.NoEvents = False
parser.EventInterval 1000, 5
parser.EventInterval -7, "6"
parser.Parse ""
parser.Parse
parser.Parse "$GPXXX,1" & vbCrLf

Dim value
value = 12
parser.GpsDatum = value
parser.Parse value

On Error Resume Next
parser.GpsDatum = 0
ExpectError "GpsDatum 0", &H80042713, "Unknown datum!", "NmeaParser Class"
parser.GpsDatum = 29
ExpectError "GpsDatum 29", &H80042713, "Unknown datum!", "NmeaParser Class"
parser.GpsDatum = 28.7
ExpectError "GpsDatum 28.7, which rounds to 29", &H80042713, "Unknown datum!", "NmeaParser Class"
parser.GpsDatum = "three"
ExpectError "GpsDatum three", &H80042713, "Unknown datum!", "NmeaParser Class"
parser.GpsDatum = Null
ExpectError "GpsDatum Null", &H80042713, "Unknown datum!", "NmeaParser Class"
parser.GpsDatum = Array(1, 2)
ExpectError "GpsDatum array", &H80042713, "Unknown datum!", "NmeaParser Class"
parser.EventInterval 1000, 9
ExpectError "EventInterval of type 9", &H80042713, "Unknown event type!", "NmeaParser Class"
parser.EventInterval 1000
ExpectError "EventInterval without a type", &H80042713, "Unknown event type!", "NmeaParser Class"
parser.EventInterval , 4
ExpectError "EventInterval with the first left out", &H80042713, "Unknown event type!", _
    "NmeaParser Class"
parser.EventInterval , 5
ExpectNoError "EventInterval without an interval"
parser.EventInterval 1, 2, 3
ExpectSomeError "too many arguments"
parser.Unknown = 1
ExpectSomeError "an unknown member"
value = parser.GpsDatum
ExpectSomeError "reading what can only be written"
CreateObject "KavrelCE.GpsFix"
ExpectSomeError "a class that cannot be created"
On Error GoTo 0

Set parser = Nothing
If failures = 0 Then WScript.Echo "SCRIPT OK"

Sub ExpectError(what, number, description, source)
    If Err.Number = number And Err.Description = description And Err.Source = source Then
        Err.Clear
        Exit Sub
    End If
    Fail what
End Sub

Sub ExpectNoError(what)
    If Err.Number <> 0 Then Fail what
End Sub

Sub ExpectSomeError(what)
    If Err.Number = 0 Then Fail what
    Err.Clear
End Sub

Sub Fail(what)
    WScript.Echo what & ": " & Hex(Err.Number) & " '" & Err.Description & "' from '" & Err.Source _
        & "'"
    Err.Clear
    failures = failures + 1
End Sub
