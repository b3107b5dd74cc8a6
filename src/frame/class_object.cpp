#include "frame/class_object.h"

#include <array>
#include <cstddef>
#include <new>

#include "base/library_lock.h"
#include "frame/com_object.h"
#include "frame/object_map.h"
#include "platform/win32/module_lock.h"

namespace kavrel {
namespace {

// A class factory. Its own references do not keep the module loaded; LockServer does.
class ClassObject final : public ComObject<IClassFactory> {
  public:
    explicit ClassObject(const ObjectMapEntry& entry)
        : ComObject(IID_IClassFactory), entry_(entry) {}

    STDMETHOD(CreateInstance)(IUnknown* outer, REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        const ComRef<IDispatch> instance = entry_.createInstance();
        if (!instance) return E_OUTOFMEMORY;
        return instance->QueryInterface(id, object);
    }

    STDMETHOD(LockServer)(BOOL lock) override {
        lock ? LockModule() : UnlockModule();
        return S_OK;
    }

  private:
    const ObjectMapEntry& entry_;
};

constexpr std::size_t kMaxClasses = 4;
constinit std::array<ClassObject*, kMaxClasses> classObjects{};  // by place in the object map

// Keeps the first class object that is made, should two threads make one at once.
ClassObject* KeptClassObject(std::size_t index, const ObjectMapEntry& entry) {
    if (classObjects[index] != nullptr) return classObjects[index];

    auto made = ComRef<ClassObject>::Adopt(new (std::nothrow) ClassObject(entry));
    const LibraryLockScope lock;
    if (classObjects[index] == nullptr) classObjects[index] = made.Detach();
    return classObjects[index];
}

}  // namespace

HRESULT GetClassObject(REFCLSID classId, REFIID interfaceId, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;

    const auto map = ObjectMap();
    for (std::size_t i = 0; i < map.size() && i < kMaxClasses; ++i) {
        if (!IsEqualCLSID(classId, map[i].classId)) continue;
        ClassObject* const classObject = KeptClassObject(i, map[i]);
        if (classObject == nullptr) return E_OUTOFMEMORY;
        return classObject->QueryInterface(interfaceId, object);
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

void ReleaseClassObjects() {
    for (ClassObject*& classObject : classObjects) {
        if (classObject != nullptr) classObject->Release();
        classObject = nullptr;
    }
}

}  // namespace kavrel
