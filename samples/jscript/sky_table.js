// Prints the satellites in view at the end of a receiver's log, and its last fix, under cscript:
//     cscript //nologo sky_table.js receiver.log
// Asks for them with the queries, as hosts without events do.

var parser = new ActiveXObject("KavrelCE.NmeaParser");
parser.NoEvents = true;

var files = new ActiveXObject("Scripting.FileSystemObject");
var log = files.OpenTextFile(WScript.Arguments(0));
while (!log.AtEndOfStream) {
    // ReadLine strips the line's end, without which a sentence is not complete.
    parser.Parse(log.ReadLine() + "\r\n");
}

// With a time-out of 0 a query gives the latest, or null.
var fix = parser.GetGpsFix(0, 0);
if (fix === null || fix.FixType == 0) {
    WScript.Echo("no fix");
} else {
    var place = fix.Position;
    WScript.Echo("fix type " + fix.FixType + " at " + place.LatitudeString(0) + ", " + place.LongitudeString(0));
}

var satellites = parser.GetSatellites(0);
if (satellites !== null) {
    WScript.Echo(satellites.Count + " satellites");
    WScript.Echo(" ID  elev  azim   SNR  used");
    for (var i = 1; i <= satellites.Count; i++) {
        var satellite = satellites.Item(i);
        WScript.Echo(right(satellite.ID, 3) + right(satellite.Elevation, 6) + right(satellite.Azimuth, 6) +
            right(satellite.SNR, 6) + (satellite.UsedForFix ? "   yes" : ""));
    }
}
WScript.Echo("SCRIPT OK");

function right(value, width) {
    var text = String(value);
    while (text.length < width) text = " " + text;
    return text;
}
