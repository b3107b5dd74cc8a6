// Settings of the parser from JScript: conversions of arguments, and errors with number and text.
var failures = 0;
var parser = new ActiveXObject("KavrelCE.NmeaParser");

parser.GpsDatum = 3;
parser.GpsDatum = "28";
parser.GpsDatum = 3.7;
parser.ComPort = -1;
parser.BaudRate = 9600;
parser.AllEventsGeneric = true;
parser.AllEventsGeneric = 0;
parser.ChecksumMandatory = false;
parser.NoEvents = true;
parser.NoEvents = false;
parser.EventInterval(1000, 5);
parser.EventInterval(-7, "6");
parser.Parse("");
parser.Parse();
parser.Parse(undefined);
parser.Parse(null);
parser.Parse("$GPXXX,1\r\n");

function expectError(what, number, description, action) {
    try {
        action();
    } catch (error) {
        if ((number === 0 || (error.number >>> 0) === number) &&
            (description === "" || error.description === description)) {
            return;
        }
        WScript.Echo(what + ": " + (error.number >>> 0).toString(16) + " " + error.description);
        failures++;
        return;
    }
    WScript.Echo(what + ": no error");
    failures++;
}

expectError("GpsDatum 0", 0x80042713, "Unknown datum!", function () { parser.GpsDatum = 0; });
expectError("GpsDatum 28.7", 0x80042713, "Unknown datum!", function () { parser.GpsDatum = 28.7; });
expectError("GpsDatum undefined", 0x80042713, "Unknown datum!",
    function () { parser.GpsDatum = undefined; });
expectError("EventInterval of type 9", 0x80042713, "Unknown event type!",
    function () { parser.EventInterval(1000, 9); });
expectError("EventInterval without a type", 0x80042713, "Unknown event type!",
    function () { parser.EventInterval(1000); });
expectError("too many arguments", 0, "", function () { parser.EventInterval(1, 5, 3); });
expectError("an unknown member", 0, "", function () { parser.Unknown(); });
expectError("a class that cannot be created", 0, "",
    function () { new ActiveXObject("KavrelCE.GpsFix"); });

if (failures === 0) WScript.Echo("SCRIPT OK");
