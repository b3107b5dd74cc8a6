// Datums and grids of the script's own: JScript puts objects by plain assignment.
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

position.Latitude = 52;
var datum = new ActiveXObject("KavrelCE.CustomDatum");
datum.SemiMajorAxis = 6377563.396;
datum.E2 = -0.00667054;
near("squared eccentricity", datum.E2 * 1e5, 667.054);
position.CustomDatum = datum;
same("custom datum", position.Datum, 28);
var grid = new ActiveXObject("KavrelCE.CustomGrid");
grid.CustomDatum = datum;
same("datum of the grid", grid.Datum, 28);
position.CustomGrid = grid;
same("custom grid", position.Grid, 52);

expectError("grid without a projection", 0x80042713, "Unknown grid!",
    function () { return position.Easting; });

if (failures === 0) WScript.Echo("SCRIPT OK");
