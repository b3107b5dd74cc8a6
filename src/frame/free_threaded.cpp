#include "frame/free_threaded.h"

#include "base/library_lock.h"
#include "platform/win32/device.h"

namespace kavrel {
namespace {

// Only a platform with apartments has marshalers, so the function is no import.
HRESULT CreateMarshaler(IUnknown& outer, ComRef<IUnknown>& marshaler) {
    using Create = HRESULT(STDAPICALLTYPE*)(IUnknown*, IUnknown**);
    const FARPROC found =
        FindFunction(GetModuleHandleW(L"ole32.dll"), L"CoCreateFreeThreadedMarshaler",
                     "CoCreateFreeThreadedMarshaler");
    if (found == nullptr) return E_NOINTERFACE;
    const auto create = reinterpret_cast<Create>(reinterpret_cast<void*>(found));
    return create(&outer, marshaler.Receive());
}

}  // namespace

HRESULT FreeThreaded::QueryMarshaler(IUnknown& outer, REFIID id, void** object) {
    *object = nullptr;
    if (!IsEqualIID(id, IID_IMarshal)) return E_NOINTERFACE;
    if (!marshaler_) {
        ComRef<IUnknown> made;
        if (FAILED(CreateMarshaler(outer, made))) return E_NOINTERFACE;
        const LibraryLockScope lock;
        if (!marshaler_) marshaler_ = ComRef<IUnknown>::Adopt(made.Detach());
    }
    return marshaler_->QueryInterface(id, object);
}

}  // namespace kavrel
