' Prints the sentences of a receiver's log as the parser's events bring them. Needs a script host
' with events: one that offers WScript.ConnectObject.
Option Explicit

Dim parser, files, log, count
count = 0
Set parser = CreateObject("KavrelCE.NmeaParser")
WScript.ConnectObject parser, "parser_"

Set files = CreateObject("Scripting.FileSystemObject")
Set log = files.OpenTextFile(WScript.Arg(0))
Do Until log.AtEndOfStream
    parser.Parse log.ReadLine() & vbCrLf
Loop
WScript.DisconnectObject parser
WScript.Echo count & " sentences"
WScript.Echo "SCRIPT OK"

Sub parser_Generic(sentence)
    count = count + 1
    If count <= 3 Then
        WScript.Echo sentence.FullCommand & ": " & sentence.FieldsCount & " fields, time " & sentence.Fields(1)
    End If
End Sub
