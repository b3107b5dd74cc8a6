' Feeds a receiver's log to the parser, sentence by sentence, under cscript:
'     cscript //nologo first_light.vbs receiver.log
' cscript cannot receive events; samples\cpp\event_host.cpp and scripts in hosts that can do.
Option Explicit

Dim parser, files, log, line, lines
Set parser = CreateObject("KavrelCE.NmeaParser")
parser.GpsDatum = 1
parser.ChecksumMandatory = True

Set files = CreateObject("Scripting.FileSystemObject")
Set log = files.OpenTextFile(WScript.Arguments(0))
lines = 0
Do Until log.AtEndOfStream
    ' A line at a time: the parser keeps the last 512 characters.
    line = log.ReadLine()
    parser.Parse line & vbCrLf
    lines = lines + 1
Loop
WScript.Echo "Parsed " & lines & " lines"

On Error Resume Next
parser.GpsDatum = 29
WScript.Echo "GpsDatum = 29: " & Err.Description & " (" & Hex(Err.Number) & ", " & Err.Source & ")"
Err.Clear
parser.EventInterval 1000, 1
WScript.Echo "EventInterval 1000, 1: " & Err.Description
On Error GoTo 0

WScript.Echo "SCRIPT OK"
