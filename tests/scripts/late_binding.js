// Where JScript differs: undefined arguments, objects put by plain assignment, null as no object,
// objects of its own, true flags, and errors without a source.
var position = new ActiveXObject("KavrelCE.Position");

function same(what, found, wanted) {
    if (found === wanted) return;
    WScript.Echo(what + ": " + found + " instead of " + wanted);
    WScript.Quit(1);
}
function expectError(number, description, action) {
    var outcome = "no error";
    try {
        action();
    } catch (error) {
        outcome = (error.number >>> 0).toString(16) + " " + error.description;
    }
    same(description, outcome, number.toString(16) + " " + description);
}

position.SetLatitudeDMS(52);
position.SetLongitudeDMS(9, undefined, undefined, "E");
same("text", position.LongitudeString(0), "9 0'0.00 E");
same("true", position.IsSameDatum(position.Copy()) == true, true);
position.Longitude = NaN;
same("no number is kept", isNaN(position.Longitude), true);

var datum = new ActiveXObject("KavrelCE.CustomDatum");
var grid = new ActiveXObject("KavrelCE.CustomGrid");
position.CustomDatum = datum;
grid.CustomDatum = datum;
position.CustomGrid = grid;
same("custom ones", position.Datum + " " + grid.Datum + " " + position.Grid, "28 28 52");

expectError(0x80042713, "Position may not be null.", function () { position.Distance(null, 1); });
var notObjects = [undefined, {}, [position], datum];
for (var i = 0; i < notObjects.length; i++) {
    expectError(0x80004002, "Parameter not a valid object!",
        function () { position.Distance(notObjects[i], 1); });
}

var parser = new ActiveXObject("KavrelCE.NmeaParser");
parser.Parse();
parser.Parse(undefined);
parser.Parse(null);
expectError(0x80042713, "Unknown datum!", function () { parser.GpsDatum = undefined; });
parser.NoEvents = true;
same("a fix from nowhere", parser.GetGpsFix(0, 0), null);
WScript.Echo("SCRIPT OK");
