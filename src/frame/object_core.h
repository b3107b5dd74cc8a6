// ObjectCore: the part of an automation object that is the same for every class.
//
// Thread safety: reference counts may change on any thread; members run where the host calls them.
#pragma once

#include <oaidl.h>
#include <ocidl.h>

#include "base/record.h"
#include "frame/dispatch.h"
#include "frame/record_holder.h"

namespace kavrel {

// Counts the references to the object, deletes it after the last one, and keeps the module loaded
// until then. The interfaces that need no more than the class's description and the record are its
// own: ISupportErrorInfo, IProvideClassInfo2, and the private one.
class ObjectCore final : public ISupportErrorInfo, public IProvideClassInfo2, public IRecordHolder {
  public:
    // Starts with one reference, its maker's, after which `destroy` is called with `whole`.
    ObjectCore(const ClassDescription& description, Ref<Record> record, void* whole,
               void (*destroy)(void* whole));
    ~ObjectCore();
    ObjectCore(const ObjectCore&) = delete;
    ObjectCore& operator=(const ObjectCore&) = delete;

    // The class's default interface. REQUIRES: called once, before the object is handed out.
    void SetFace(IDispatch& face) { face_ = &face; }

    const ClassDescription& description() const { return description_; }
    Record& record() { return *record_; }

    // Answers for the interfaces that every class has.
    HRESULT FindInterface(REFIID id, void** object);

    // Asks the object, which may have further interfaces.
    STDMETHOD(QueryInterface)(REFIID id, void** object) override;
    STDMETHOD_(ULONG, AddRef)() override;
    STDMETHOD_(ULONG, Release)() override;

    // False when the last reference is being dropped.
    bool AddReferenceUnlessLast();

    // What IDispatch asks of the object.
    HRESULT GetTypeInfoCount(UINT* count);
    HRESULT GetTypeInfo(UINT index, LCID locale, ITypeInfo** type);
    HRESULT GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale, DISPID* ids);
    HRESULT Invoke(DISPID id, REFIID reserved, LCID locale, WORD kinds, DISPPARAMS* parameters,
                   VARIANT* result, EXCEPINFO* exception, UINT* argumentError);

    STDMETHOD(InterfaceSupportsErrorInfo)(REFIID id) override;
    STDMETHOD(GetClassInfo)(ITypeInfo** type) override;

    // Only the default source interface has an identity to tell; E_INVALIDARG for anything else
    // and for a class without events.
    STDMETHOD(GetGUID)(DWORD kind, GUID* id) override;

    Record* STDMETHODCALLTYPE RecordOfClass(REFCLSID classId) override;

    // The check after each call: success, or the report of the error in the record's slot.
    HRESULT Check() const;

    // Fails a member whose argument is not the object it should be.
    HRESULT RefuseObject(HRESULT failure) const;

    // Whole members: a property that is read, or set, by one operation on the record. For the types
    // that object_core.cpp lists.
    template <typename Value>
    HRESULT Get(VARIANT* result, Value (*getter)(Record& record));
    template <typename Value>
    HRESULT Put(const VARIANT& value, void (*setter)(Record& record, Value value));

  private:
    const ClassDescription& description_;
    const Ref<Record> record_;
    IDispatch* face_ = nullptr;
    void* const whole_;
    void (*const destroy_)(void* whole);
    LONG referenceCount_ = 1;
};

}  // namespace kavrel
