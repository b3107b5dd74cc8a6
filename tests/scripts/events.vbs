' Events in a host whose scripts receive them: every one, with its objects, by type and interval.
Option Explicit
Dim parser, log
Set parser = CreateObject("KavrelCE.NmeaParser")
WScript.ConnectObject parser, "parser_"

Const VTG = "$GPVTG,084.4,T,087.5,M,010,N,018.5,K"
Expect "$GPRMC,123519,A,4807.038,N,01131.000,E,10,084.4,230394,003.1,W", _
    "RMC 10 1994 RMC;Status 1;Fix 2 48 7'2.28 N;Movement 84.4 -31;Generic RMC;"
Expect "$GPGGA,123520,4807.038,S,01131.000,E,1,08,0.9,545.4,M,46.9,M,,", _
    "GGA 8 0.9 GGA;Fix 3 48 7'2.28 S;Generic GGA;"
Expect "$GPGLL,4807.038,N,01131.000,W,123521,A", "GLL 1 GLL;Fix 3 48 7'2.28 N;Generic GLL;"
Expect VTG, "Movement 84.4 -31;Generic VTG;"
Expect "$GPGSV,1,1,02,01,40,083,46,02,17,308,41", "Satellites 1 0 2 0;Generic GSV;"
Expect "$GPGSA,A,3,02,,,,,,,,,,,,2.5,1.3,2.1", _
    "Quality 2.5 1.3 2.1;Satellites 1 0 2 1;Generic GSA;"
Expect "$GPGLL,,,,,,V", "GLL 0 GLL;Status 0;Fix 0 none;Generic GLL;"

parser.AllEventsGeneric = True
Expect VTG, "Generic VTG;"
parser.AllEventsGeneric = False
parser.EventInterval -1, 7
Expect VTG, "Generic VTG;"
parser.ChecksumMandatory = True
Expect VTG, ""
Expect "$GPRMX*50", "Generic RMX;"
parser.ChecksumMandatory = False

' Every fifth second of the receiver's time.
Dim clock
parser.EventInterval 5000, 5
For clock = 130010 To 130021
    parser.Parse "$GPGGA," & clock & ",4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,," & vbCrLf
Next
Same "intervals", UBound(Split(log, "Fix 3")), 3
Same "GGA nevertheless", UBound(Split(log, "GGA 8")), 12

WScript.Echo "SCRIPT OK"

Sub parser_Generic(sentence)
    Add "Generic " & sentence.Command
End Sub
Sub parser_GGA(gga, sentence)
    Add "GGA " & gga.SatellitesInView & " " & gga.HDOP & " " & sentence.Command
End Sub
Sub parser_GLL(gll, sentence)
    Add "GLL " & CInt(gll.Valid) & " " & sentence.Command
End Sub
Sub parser_RMC(rmc, sentence)
    Add "RMC " & rmc.GroundSpeed & " " & Year(rmc.UTC) & " " & sentence.Command
End Sub
Sub parser_OnSatellites(satellites)
    Dim satellite, text
    For Each satellite In satellites
        text = text & " " & satellite.ID & " " & CInt(satellite.UsedForFix)
    Next
    Add "Satellites" & text
End Sub
Sub parser_OnGpsFix(fix)
    Dim place
    place = "none"
    If Not fix.Position Is Nothing Then place = fix.Position.LatitudeString(0)
    Add "Fix " & fix.FixType & " " & place
End Sub
Sub parser_OnMovement(movement)
    Add "Movement " & movement.Heading & " " & CInt(movement.MagneticVariation * 10)
End Sub
Sub parser_OnQuality(quality)
    Add "Quality " & quality.PDOP & " " & quality.HDOP & " " & quality.VDOP
End Sub
Sub parser_OnComStatus(status)
    Add "Status " & CInt(status.ValidFix)
End Sub

Sub Add(text)
    log = log & text & ";"
End Sub

Sub Expect(sentence, wanted)
    log = ""
    parser.Parse sentence & vbCrLf
    Same sentence, log, wanted
    log = ""
End Sub

Sub Same(what, found, wanted)
    If found = wanted Then Exit Sub
    WScript.Echo what & ": '" & found & "' instead of '" & wanted & "'"
    WScript.Quit 1
End Sub
