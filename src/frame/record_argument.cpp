#include "frame/record_argument.h"

#include "frame/com_ref.h"
#include "frame/record_holder.h"
#include "frame/variant_in.h"

namespace kavrel {

HRESULT FindRecord(const VARIANT& argument, REFCLSID classId, REFIID interfaceId,
                   Ref<Record>& record) {
    record = nullptr;
    ComRef<IUnknown> object;
    const HRESULT result = ToObject(argument, interfaceId, object.ReceiveVoid());
    if (FAILED(result) || !object) return result;

    ComRef<IRecordHolder> holder;
    if (FAILED(object->QueryInterface(kRecordHolderId, holder.ReceiveVoid()))) return E_NOINTERFACE;
    Record* const found = holder->RecordOfClass(classId);
    if (found == nullptr) return E_NOINTERFACE;
    record = Ref<Record>::Share(found);
    return S_OK;
}

}  // namespace kavrel
