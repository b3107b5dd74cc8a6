// Positions from JScript, which has no out arguments and puts objects by plain assignment.
var failures = 0;
var position = new ActiveXObject("KavrelCE.Position");

function fail(what) {
    WScript.Echo(what);
    failures++;
}
function same(what, found, wanted) {
    if (found !== wanted) fail(what + ": " + found + " instead of " + wanted);
}
function near(what, found, wanted) {
    if (!(Math.abs(found - wanted) < 0.001)) fail(what + ": " + found + " instead of " + wanted);
}
function expectError(what, number, description, action) {
    try {
        action();
    } catch (error) {
        if ((error.number >>> 0) !== number || error.description !== description) {
            fail(what + ": " + (error.number >>> 0).toString(16) + " " + error.description);
        }
        return;
    }
    fail(what + ": no error");
}

position.Latitude = 48.1173;
position.Longitude = "11.5";
same("text", position.LatitudeString(0), "48 7'2.28 N");
same("text in the other format", position.LongitudeString(1), "01130.00001");
position.SetLatitudeDMS(59, 30, 0, "S");
near("set by parts", position.Latitude, -59.5);
position.SetLongitudeDMS(9, undefined, undefined, "E");
near("parts that are undefined", position.Longitude, 9);
position.SetLatitudeDMS(52);
position.Grid = 1;
same("zone", position.Zone, "32U");
near("easting", position.Easting, 500000);

var copy = position.Copy();
same("same grid", !!copy.IsSameGrid(position), true);
copy.Move(1000, 90, 1);
near("distance", position.Distance(copy, 1), 1000);
copy.Grid = 0;
copy.MakeSameGrid(position);
same("grid taken over", copy.Grid, 1);

expectError("latitude NaN", 0x80042713, "Invalid latitude. Must be between -PI/2 and PI/2",
    function () { position.Latitude = NaN; });
expectError("latitude infinite", 0x80042713, "Invalid latitude. Must be between -PI/2 and PI/2",
    function () { position.LatitudeRads = -Infinity; });
expectError("null", 0x80042713, "Position may not be null.",
    function () { position.Distance(null, 1); });
expectError("undefined", 0x80004002, "Parameter not a valid object!",
    function () { position.Distance(undefined, 1); });
expectError("an object of the script", 0x80004002, "Parameter not a valid object!",
    function () { position.Bearing({}, 1); });
expectError("an array", 0x80004002, "Parameter not a valid object!",
    function () { position.MakeSameDatum([position]); });
expectError("bad method", 0x80042713, "Unknown method.", function () { position.Move(1, 1, 7); });
position.Longitude = NaN;
same("no number is kept", isNaN(position.Longitude), true);

if (failures === 0) WScript.Echo("SCRIPT OK");
