#include "frame/free_threaded.h"

#include "base/library_lock.h"
#include "platform/win32/device.h"

namespace kavrel {

HRESULT FreeThreaded::QueryMarshaler(IUnknown& outer, REFIID id, void** object) {
    *object = nullptr;
    if (!IsEqualIID(id, IID_IMarshal)) return E_NOINTERFACE;
    if (!marshaler_) {
        ComRef<IUnknown> made;
        if (FAILED(CreateFreeThreadedMarshaler(&outer, made.Receive()))) return E_NOINTERFACE;
        const LibraryLockScope lock;
        if (!marshaler_) marshaler_ = ComRef<IUnknown>::Adopt(made.Detach());
    }
    return marshaler_->QueryInterface(id, object);
}

}  // namespace kavrel
