// AutomationObject: the base of every automation class, a thin wrapper around one engine record.
//
// It brings the reference count, the interfaces that hosts ask for, late binding by member table,
// and the three steps of a member: convert in, run the operation, convert out and check the error.
//
// Thread safety: reference counts may change on any thread; members run where the host calls them.
#pragma once

#include <oaidl.h>
#include <ocidl.h>

#include <utility>

#include "base/record.h"
#include "frame/com_ref.h"
#include "frame/dispatch.h"
#include "frame/record_holder.h"
#include "frame/type_library.h"
#include "frame/variant_in.h"
#include "frame/variant_out.h"
#include "platform/win32/module_lock.h"

namespace kavrel {

// IProvideClassInfo2 and ISupportErrorInfo, which need no more than the class description.
class ClassInformation : public ISupportErrorInfo, public IProvideClassInfo2 {
  public:
    STDMETHOD(InterfaceSupportsErrorInfo)(REFIID id) override;
    STDMETHOD(GetClassInfo)(ITypeInfo** type) override;

    // Only the default source interface has an identity to tell; E_INVALIDARG for anything else
    // and for a class without events.
    STDMETHOD(GetGUID)(DWORD kind, GUID* id) override;

  protected:
    explicit ClassInformation(const ClassDescription& description) : description_(description) {}
    ~ClassInformation() = default;

    const ClassDescription& description() const { return description_; }

    // The check after each call: success, or the report of the error in a record's slot.
    HRESULT Check(const ErrorSlot& error) const;

    // Fails a member whose argument is not the object it should be.
    HRESULT RefuseObject(HRESULT failure) const;

    // The pointer for one of the two interfaces (and IProvideClassInfo), or null.
    IUnknown* Find(REFIID id);

  private:
    const ClassDescription& description_;
};

// `Further` are interfaces that only some classes have; each is constructed from the description.
template <typename Interface, typename EngineRecord, typename... Further>
class AutomationObject : public Interface,
                         public ClassInformation,
                         public IRecordHolder,
                         public Further... {
  public:
    AutomationObject(const AutomationObject&) = delete;
    AutomationObject& operator=(const AutomationObject&) = delete;

    STDMETHOD(QueryInterface)(REFIID id, void** object) final {
        if (object == nullptr) return E_POINTER;
        IUnknown* found = nullptr;
        if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch) ||
            IsEqualIID(id, description().interfaceId)) {
            found = static_cast<Interface*>(this);
        } else if (IsEqualIID(id, kRecordHolderId)) {
            found = static_cast<IRecordHolder*>(this);
        } else {
            found = ClassInformation::Find(id);
            if (found == nullptr) return QueryFurtherInterface(id, object);
        }
        found->AddRef();
        *object = found;
        return S_OK;
    }

    STDMETHOD_(ULONG, AddRef)() final {
        return static_cast<ULONG>(InterlockedIncrement(&referenceCount_));
    }

    STDMETHOD_(ULONG, Release)() final {
        const LONG count = InterlockedDecrement(&referenceCount_);
        if (count == 0) delete this;
        return static_cast<ULONG>(count);
    }

    STDMETHOD(GetTypeInfoCount)(UINT* count) final {
        if (count == nullptr) return E_POINTER;
        *count = 1;
        return S_OK;
    }

    STDMETHOD(GetTypeInfo)(UINT index, LCID, ITypeInfo** type) final {
        if (type == nullptr) return E_POINTER;
        *type = nullptr;
        if (index != 0) return DISP_E_BADINDEX;
        ComRef<ITypeInfo> found;
        const HRESULT result = GetTypeDescription(description().interfaceId, found);
        *type = found.Detach();
        return result;
    }

    STDMETHOD(GetIDsOfNames)(REFIID, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) final {
        return GetMemberIds(description(), names, count, locale, ids);
    }

    STDMETHOD(Invoke)
    (DISPID id, REFIID reserved, LCID locale, WORD kinds, DISPPARAMS* parameters, VARIANT* result,
     EXCEPINFO* exception, UINT* argumentError) final {
        return InvokeMember(description(), this, id, reserved, locale, kinds, parameters, result,
                            exception, argumentError);
    }

    Record* STDMETHODCALLTYPE RecordOfClass(REFCLSID classId) final {
        return IsEqualCLSID(classId, description().classId) ? record_.get() : nullptr;
    }

    // For those who know the object without a reference: false when its last one is being dropped.
    bool AddReferenceUnlessLast() {
        for (LONG count = referenceCount_; count != 0;) {
            const LONG found = InterlockedCompareExchange(&referenceCount_, count + 1, count);
            if (found == count) return true;
            count = found;
        }
        return false;
    }

  protected:
    AutomationObject(const ClassDescription& description, Ref<EngineRecord> record)
        : ClassInformation(description), Further(description)..., record_(std::move(record)) {
        LockModule();
    }
    virtual ~AutomationObject() { UnlockModule(); }

    EngineRecord& record() { return *record_; }

    // Answers for what a class has beyond the usual interfaces.
    virtual HRESULT QueryFurtherInterface(REFIID, void** object) {
        *object = nullptr;
        return E_NOINTERFACE;
    }

    // A member without a result: runs the operation and checks the record's error. Operations that
    // cannot fail do not clear the error of an earlier one, so it is done here for all.
    template <typename Operation>
    HRESULT Do(Operation&& operation) {
        record_->error().Clear();
        operation();
        return Check(record_->error());
    }

    // A member with a result, which is written whether or not the operation failed.
    template <typename Operation>
    HRESULT Return(VARIANT* result, Operation&& operation) {
        if (result == nullptr) return E_POINTER;
        record_->error().Clear();
        SetVariant(*result, operation());
        return Check(record_->error());
    }

    // A property that is one getter, or one setter, of the record.
    template <auto Getter>
    HRESULT GetBy(VARIANT* result) {
        return Return(result, [this] { return (*record_.*Getter)(); });
    }
    template <auto Setter>
    HRESULT PutBy(const VARIANT& value) {
        return Do([&] { (*record_.*Setter)(ToParameterOf(Setter, value)); });
    }

  private:
    LONG referenceCount_ = 1;
    Ref<EngineRecord> record_;
};

}  // namespace kavrel
