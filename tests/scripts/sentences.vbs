' Sentences by events, in a host whose scripts receive them.
Option Explicit
Dim parser, log, kept, mode
log = ""
mode = ""
Set parser = CreateObject("KavrelCE.NmeaParser")
WScript.ConnectObject parser, "parser_"

parser.Parse "$GPXXX,a,b,c" & vbCrLf
Expect "a sentence", "XXX GPXXX 3 a c;"
parser.Parse "$GPX"
Expect "half a sentence", ""
parser.Parse "YY,1" & vbCrLf & "$PGRME,2" & vbCrLf
Expect "two at once", "XYY GPXYY 1 1 1;RME PGRME 1 2 2;"
parser.ChecksumMandatory = True
parser.Parse "$GPXXX,1" & vbCrLf & "$GPRMX*50" & vbCrLf & "$GPTXT,N*2d" & vbCrLf
Expect "checksums", "RMX GPRMX 0;"
parser.ChecksumMandatory = False

' A sentence lives on, and can be changed.
parser.Parse "$GPXXX,a,b*4C" & vbCrLf
log = ""
kept.SetField 5, "x"
Same "rebuilt", kept.Sentence, "$GPXXX,a,b,,,x*18"
kept.Command = "YYY"
Same "command", kept.FullCommand, "GPYYY"
kept.FullCommand = "PGRME"
Same "full command", kept.Command, "RME"
kept.Sentence = "$GPGGA,,,"
Same "replaced", kept.FieldsCount, 3
Same "empty field", kept.Fields(3), ""
kept.Sentence = "$GPGG"
Same "too short", kept.FieldsCount, 0
Same "index as text", FieldOf("$GPXXX,one,two", "2"), "two"
Same "index cut to 8 bits", FieldOf("$GPXXX,one,two", 257), "one"

On Error Resume Next
kept.Fields 9
If Err.Number <> &H80042714 Or Err.Description <> "Index out of bounds" Or Err.Source <> "" Then
    WScript.Echo "index: " & Hex(Err.Number) & " " & Err.Description & " from '" & Err.Source & "'"
    WScript.Quit 1
End If
On Error GoTo 0

' Parse and settings inside an event.
mode = "parse"
log = ""
parser.Parse "$GPXXX,1" & vbCrLf & "$GPXXX,2" & vbCrLf
Expect "parse in an event", "XXX GPXXX 1 1 1;XXX GPXXX 1 2 2;XXX GPXXX 1 3 3;"

' Connections end inside an event, too.
mode = "disconnect"
parser.Parse "$GPXXX,1" & vbCrLf & "$GPXXX,2" & vbCrLf
Expect "disconnected", "XXX GPXXX 1 1 1;"

WScript.Echo "SCRIPT OK"

Function FieldOf(text, index)
    kept.Sentence = text
    FieldOf = kept.Fields(index)
End Function

Sub parser_Generic(sentence)
    Dim n
    Set kept = sentence
    n = sentence.FieldsCount
    log = log & sentence.Command & " " & sentence.FullCommand & " " & n
    If n > 0 Then log = log & " " & sentence.Fields(1) & " " & sentence.Fields(n)
    log = log & ";"
    If mode = "parse" Then
        mode = ""
        parser.Parse "$GPXXX,3" & vbCrLf
    ElseIf mode = "disconnect" Then
        WScript.DisconnectObject parser
    End If
End Sub

Sub Expect(what, wanted)
    Same what, log, wanted
    log = ""
End Sub

Sub Same(what, found, wanted)
    If found = wanted Then Exit Sub
    WScript.Echo what & ": '" & found & "' instead of '" & wanted & "'"
    WScript.Quit 1
End Sub
