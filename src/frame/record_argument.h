// From an object argument to the engine record inside, where the object is one of ours.
#pragma once

#include "base/record.h"
#include "frame/com_ref.h"
#include "frame/record_holder.h"
#include "frame/variant_in.h"

namespace kavrel {

// Follows an argument that is to be an object of a class with a default interface. A null object
// gives a null record and success; an object of another kind fails with E_NOINTERFACE.
template <typename EngineRecord>
HRESULT RecordFromArgument(const VARIANT& argument, REFCLSID classId, REFIID interfaceId,
                           Ref<EngineRecord>& record) {
    record = nullptr;
    ComRef<IUnknown> object;
    const HRESULT result = ToObject(argument, interfaceId, object.ReceiveVoid());
    if (FAILED(result) || !object) return result;

    ComRef<IRecordHolder> holder;
    if (FAILED(object->QueryInterface(kRecordHolderId, holder.ReceiveVoid()))) return E_NOINTERFACE;
    auto* const found = static_cast<EngineRecord*>(holder->RecordOfClass(classId));
    if (found == nullptr) return E_NOINTERFACE;
    record = Ref<EngineRecord>::Share(found);
    return S_OK;
}

}  // namespace kavrel
