// Sentences by events, in a host whose scripts receive them.
var parser = new ActiveXObject("KavrelCE.NmeaParser");
var log = "";
var kept = null;
WScript.ConnectObject(parser, "parser_");

function parser_Generic(sentence) {
    kept = sentence;
    var n = sentence.FieldsCount;
    log += sentence.FullCommand + " " + n;
    if (n > 0) log += " " + sentence.Fields(n);
    log += ";";
}

function same(what, found, wanted) {
    if (found === wanted) return;
    WScript.Echo(what + ": '" + found + "' instead of '" + wanted + "'");
    WScript.Quit(1);
}

parser.Parse("$GPXXX,a,b\r\n$PGRME,1\r\n$GPX");
parser.Parse("YY\r");
parser.Parse("\n");
same("events", log, "GPXXX 2 b;PGRME 1 1;GPXYY 0;");

kept.Sentence = "$GPXXX,1,2";
kept.SetField(3, "three");
same("text", kept.Sentence, "$GPXXX,1,2,three*0E");
kept.Command = "RMC";
same("full command", kept.FullCommand, "GPRMC");
var number = 0;
try {
    kept.Fields(4);
} catch (error) {
    number = error.number >>> 0;
    same("description", error.description, "Index out of bounds");
}
same("number", number, 0x80042714);

// All 16 bits of a character come back. Cut to 8, \u012C would be a comma.
kept.Sentence = "$GPXXX,\u012C";
same("wide text", kept.Sentence, "$GPXXX,\u012C");
same("no comma", kept.FieldsCount, 1);
kept.SetField(1, "\u0141z");
same("wide field", kept.Fields(1), "\u0141z");
same("rebuilt wide text", kept.Sentence.substr(0, 9), "$GPXXX,\u0141z");
kept.SetField(1, "1");
kept.SetField(3, "three");

// The sentence outlives the parser.
log = "";
WScript.DisconnectObject(parser);
parser.Parse("$GPXXX\r\n");
same("silence", log, "");
parser = null;
same("kept", kept.Fields(3), "three");

WScript.Echo("SCRIPT OK");
