Attribute VB_Name = "Track"
' Starts and ends the recording of Receiver.cls.
Option Explicit

' Lives outside the procedures, or the receiver would go with the one that made it.
Private here As Receiver

Public Sub StartTrack()
    On Error GoTo Failed
    Set here = New Receiver
    here.Start 3, 4800
    Exit Sub
Failed:
    ' "Comm port does not exist": the library's code, here 10007, is in the low bits.
    MsgBox Err.Description & " (" & (Err.Number And &HFFFF&) & ")", vbExclamation
    Set here = Nothing
End Sub

Public Sub EndTrack()
    If Not here Is Nothing Then here.Finish
    Set here = Nothing
End Sub
