' The results that events bring, in a host whose scripts receive them.
Option Explicit
Dim parser, log
log = ""
Set parser = CreateObject("KavrelCE.NmeaParser")
WScript.ConnectObject parser, "parser_"

Feed "$GPRMC,123519,A,4807.038,N,01131.000,E,10,084.4,230394,003.1,W"
Expect "RMC", "RMC 10 1994 RMC;Status 1;Fix 2 48 7'2.28 N;Movement 84.4 -31;Generic RMC;"
Feed "$GPGGA,123520,4807.038,S,01131.000,E,1,08,0.9,545.4,M,46.9,M,,"
Expect "GGA", "GGA 8 0.9 GGA;Fix 3 48 7'2.28 S;Generic GGA;"
Feed "$GPGLL,4807.038,N,01131.000,W,123521,A"
Expect "GLL", "GLL 1 11 31'0.00 W;Fix 3 48 7'2.28 N;Generic GLL;"
Feed "$GPVTG,084.4,T,087.5,M,010,N,018.5,K"
Expect "VTG", "Movement 84.4 -31;Generic VTG;"
Feed "$GPGSV,1,1,02,01,40,083,46,02,17,308,41"
Expect "GSV", "Satellites 1 0 2 0;Generic GSV;"
Feed "$GPGSA,A,3,02,,,,,,,,,,,,2.5,1.3,2.1"
Expect "GSA", "Quality 2.5 1.3 2.1;Satellites 1 0 2 1;Generic GSA;"
Feed "$GPGLL,,,,,,V"
Expect "no fix", "GLL 0 0 0'0.00 E;Status 0;Fix 0 none;Generic GLL;"

parser.AllEventsGeneric = True
Feed "$GPVTG,084.4,T,087.5,M,010,N,018.5,K"
Expect "only generic", "Generic VTG;"
parser.AllEventsGeneric = False

' Every fifth second of the receiver's time.
Dim second
parser.EventInterval -1, 7
parser.EventInterval 5000, 5
log = ""
For second = 10 To 21
    Feed "$GPGGA,1300" & second & ",4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,"
Next
Same "intervals", UBound(Split(log, "Fix 3")), 3
Same "GGA nevertheless", UBound(Split(log, "GGA 8")), 12
log = ""
Feed "$GPVTG,084.4,T,087.5,M,010,N,018.5,K"
Expect "no movement", "Generic VTG;"

WScript.Echo "SCRIPT OK"

Sub Feed(sentence)
    parser.Parse sentence & vbCrLf
End Sub

Sub parser_Generic(sentence)
    Add "Generic " & sentence.Command
End Sub
Sub parser_GGA(gga, sentence)
    Add "GGA " & gga.SatellitesInView & " " & gga.HDOP & " " & sentence.Command
End Sub
Sub parser_GLL(gll, sentence)
    Add "GLL " & CInt(gll.Valid) & " " & Place(gll, True)
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
    Add "Fix " & fix.FixType & " " & Place(fix, False)
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

Function Place(result, isLongitude)
    Place = "none"
    If result.Position Is Nothing Then Exit Function
    If isLongitude Then
        Place = result.Position.LongitudeString(0)
    Else
        Place = result.Position.LatitudeString(0)
    End If
End Function

Sub Add(text)
    log = log & text & ";"
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
