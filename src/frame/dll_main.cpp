// The module entry and the exported functions.

#include <windows.h>

#include "base/library_lock.h"
#include "frame/class_object.h"
#include "frame/module.h"
#include "frame/registration.h"
#include "frame/type_library.h"
#include "platform/win32/client_window.h"
#include "platform/win32/module_lock.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* reserved) {
    using namespace kavrel;
    switch (reason) {
        case DLL_PROCESS_ATTACH:
            libraryLock.Create();
            SetModuleInstance(instance);
            break;
        case DLL_PROCESS_DETACH:
            // When the whole process ends, other DLLs may be gone already, and threads that still
            // held the lock.
            if (reserved != nullptr) break;
            ForgetFormSyncWindows();
            ReleaseClassObjects();
            ReleaseTypeLibrary();
            libraryLock.Destroy();
            break;
        default:
            break;
    }
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** object) {
    return kavrel::GetClassObject(classId, interfaceId, object);
}

STDAPI DllCanUnloadNow() {
    return kavrel::IsModuleLocked() ? S_FALSE : S_OK;
}

STDAPI DllRegisterServer() {
    return kavrel::RegisterServer();
}

STDAPI DllUnregisterServer() {
    kavrel::UnregisterServerWhenLastUser();
    return S_OK;
}
