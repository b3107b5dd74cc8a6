// How far it is from one place to another, and which way, under cscript:
//     cscript //nologo way_there.js 51.5007 -0.1246 48.8584 2.2945
// Latitude and longitude in degrees on WGS 84, north and east positive.

var kvMethodMetres = 1;
var kvGridUTMNorth = 1;

if (WScript.Arguments.Count() != 4) {
    WScript.Echo("usage: way_there.js LATITUDE LONGITUDE LATITUDE LONGITUDE");
    WScript.Quit(2);
}

try {
    var here = place(WScript.Arguments(0), WScript.Arguments(1));
    var there = place(WScript.Arguments(2), WScript.Arguments(3));
    WScript.Echo("from " + describe(here));
    WScript.Echo("to " + describe(there));
    var metres = here.Distance(there, kvMethodMetres);
    WScript.Echo((metres / 1000).toFixed(1) + " km, bearing " + here.Bearing(there, kvMethodMetres).toFixed(1) +
        " degrees");

    // Move changes the position itself: go half the way with a copy.
    var half = here.Copy();
    half.Move(metres / 2, here.Bearing(there, kvMethodMetres), kvMethodMetres);
    WScript.Echo("half the way is " + describe(half));
} catch (error) {
    // The library's codes stand in the low bits.
    WScript.Echo("error " + (error.number & 0xffff) + ": " + error.description);
    WScript.Quit(1);
}
WScript.Echo("SCRIPT OK");

function place(latitude, longitude) {
    var position = new ActiveXObject("KavrelCE.Position");
    position.Latitude = Number(latitude);
    position.Longitude = Number(longitude);
    return position;
}

function describe(position) {
    position.Grid = kvGridUTMNorth;
    return position.LatitudeString(0) + ", " + position.LongitudeString(0) + " (UTM " + position.Zone + " " +
        position.Easting.toFixed(0) + " " + position.Northing.toFixed(0) + ")";
}
