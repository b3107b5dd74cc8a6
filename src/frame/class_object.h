// Class objects: the class factories of the object map.
#pragma once

#include <unknwn.h>

namespace kavrel {

// The class object of a creatable class, which is made on first request and kept. Fails with
// CLASS_E_CLASSNOTAVAILABLE for any other class.
HRESULT GetClassObject(REFCLSID classId, REFIID interfaceId, void** object);

// Releases the kept class objects. Called once, when the module is unloaded.
void ReleaseClassObjects();

}  // namespace kavrel
