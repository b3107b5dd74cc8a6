// The type library: loading, registering, and the type descriptions that objects hand out.
#pragma once

#include <oaidl.h>

#include "frame/com_ref.h"

namespace kavrel {

// Registers the type library of the module's own file, or failing that the .tlb file beside it.
HRESULT RegisterTypeLibrary();

// Takes that back. A platform without the function for it keeps the type library registered.
HRESULT UnregisterTypeLibrary();

// The description of an interface or a class. The library is loaded on first use and kept.
HRESULT GetTypeDescription(REFGUID id, ComRef<ITypeInfo>& description);

// Drops the kept library. Called once, when the module is unloaded.
void ReleaseTypeLibrary();

}  // namespace kavrel
