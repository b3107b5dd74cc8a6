// The numbers of the module's resources. Read by the resource compiler, too.
#pragma once

// The type library. The number is fixed: the platform looks for it.
#define kResourceTypeLibrary 1

// Registration scripts of the creatable classes.
#define kScriptNmeaParser 101
#define kScriptPosition 102
#define kScriptCustomGrid 103
#define kScriptCustomDatum 104

// Registration scripts that are embedded and never run: these classes cannot be created.
#define kScriptNmeaSentence 105
#define kScriptNmeaGGA 106
#define kScriptNmeaGLL 107
#define kScriptNmeaRMC 108
#define kScriptSatellites 109
#define kScriptSatellite 110
#define kScriptMovement 111
#define kScriptQuality 112
#define kScriptGpsFix 113
#define kScriptComStatus 114
