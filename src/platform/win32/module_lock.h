// The module lock count: what still needs the DLL.
#pragma once

namespace kavrel {

// The number of live objects of all classes and of LockServer(TRUE) calls; the DLL may be unloaded
// at 0. Thread safety: any thread.
void LockModule();
void UnlockModule();
bool IsModuleLocked();

}  // namespace kavrel
