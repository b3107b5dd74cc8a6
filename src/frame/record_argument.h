// From an object argument to the engine record inside, where the object is one of ours.
#pragma once

#include <oaidl.h>

#include "base/record.h"

namespace kavrel {

// Follows an argument that is to be an object of a class with a default interface. A null object
// gives a null record and success; an object of another kind fails with E_NOINTERFACE.
HRESULT FindRecord(const VARIANT& argument, REFCLSID classId, REFIID interfaceId,
                   Ref<Record>& record);

// The same for the class whose objects hold records of the type.
template <typename EngineRecord>
HRESULT RecordFromArgument(const VARIANT& argument, REFCLSID classId, REFIID interfaceId,
                           Ref<EngineRecord>& record) {
    Ref<Record> found;
    const HRESULT result = FindRecord(argument, classId, interfaceId, found);
    record = Ref<EngineRecord>::Adopt(static_cast<EngineRecord*>(found.Detach()));
    return result;
}

}  // namespace kavrel
