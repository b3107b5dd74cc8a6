// Registering the library: the scripts of the object map's classes, then the type library.
#pragma once

#include <windows.h>

namespace kavrel {

// Runs the scripts in map order, then registers the type library. Returns the first failure, with
// what was done so far left in place, or S_OK.
HRESULT RegisterServer();

// Takes the registration back when the installer's count of applications that share the module is
// exactly 1; any other count, or none, leaves the registry untouched.
void UnregisterServerWhenLastUser();

}  // namespace kavrel
