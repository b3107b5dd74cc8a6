// Prints what a receiver's log holds, as the parser's events bring it. Needs a script host with
// events: one that offers WScript.ConnectObject.

var kvEventGpsFix = 5;
var sentences = 0;

var parser = new ActiveXObject("KavrelCE.NmeaParser");
WScript.ConnectObject(parser, "gps_");
// At most one fix each twenty seconds of the receiver's time.
parser.EventInterval(20000, kvEventGpsFix);

var files = new ActiveXObject("Scripting.FileSystemObject");
var log = files.OpenTextFile(WScript.Arg(0));
while (!log.AtEndOfStream) parser.Parse(log.ReadLine() + "\r\n");

// A parser that is connected keeps the script's procedures, and they the parser.
WScript.DisconnectObject(parser);
WScript.Echo(sentences + " sentences");
WScript.Echo("SCRIPT OK");

// The names are the prefix and the event's own.
function gps_Generic(sentence) {
    sentences++;
}

function gps_OnGpsFix(fix) {
    if (fix.FixType == 0) return;
    var place = fix.Position;
    WScript.Echo("fix: " + place.LatitudeString(0) + ", " + place.LongitudeString(0));
}

function gps_OnComStatus(status) {
    // A flag is 1 or 0.
    WScript.Echo(status.ValidFix ? "the receiver has a fix" : "the receiver has lost its fix");
}
