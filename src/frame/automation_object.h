// AutomationObject: the base of every automation class, a thin wrapper around one engine record.
//
// An object is in two parts. Its core has what does not depend on the class's own interface: the
// reference count, the further interfaces that hosts ask for, late binding, the record. Its face is
// the class with that interface; it hands to the core what belongs there, and brings the three
// steps of a member: convert in, run the operation, convert out and check the error. So the code
// of the core exists once, and a class adds a vtable and its members.
//
// Thread safety: reference counts may change on any thread; members run where the host calls them.
#pragma once

#include <oaidl.h>

#include <new>
#include <utility>

#include "base/record.h"
#include "frame/com_ref.h"
#include "frame/object_core.h"
#include "frame/variant_in.h"
#include "frame/variant_out.h"

namespace kavrel {

namespace automation_object_detail {

template <typename Class, typename Parameter>
Parameter ParameterOf(void (Class::*)(Parameter));

}  // namespace automation_object_detail

// `Further` are interfaces that only some classes have; each is constructed from the description.
// Such a class overrides QueryInterface to answer for them.
template <typename Interface, typename EngineRecord, typename... Further>
class AutomationObject : public Interface, public Further... {
  public:
    using RecordType = EngineRecord;

    explicit AutomationObject(ObjectCore& core) : Further(core.description())..., core_(core) {
        core_.SetFace(*static_cast<Interface*>(this));
    }
    AutomationObject(const AutomationObject&) = delete;
    AutomationObject& operator=(const AutomationObject&) = delete;

    STDMETHOD(QueryInterface)(REFIID id, void** object) override {
        return core_.FindInterface(id, object);
    }
    STDMETHOD_(ULONG, AddRef)() final { return core_.AddRef(); }
    STDMETHOD_(ULONG, Release)() final { return core_.Release(); }

    STDMETHOD(GetTypeInfoCount)(UINT* count) final { return core_.GetTypeInfoCount(count); }
    STDMETHOD(GetTypeInfo)(UINT index, LCID locale, ITypeInfo** type) final {
        return core_.GetTypeInfo(index, locale, type);
    }
    STDMETHOD(GetIDsOfNames)
    (REFIID reserved, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) final {
        return core_.GetIDsOfNames(reserved, names, count, locale, ids);
    }
    STDMETHOD(Invoke)
    (DISPID id, REFIID reserved, LCID locale, WORD kinds, DISPPARAMS* parameters, VARIANT* result,
     EXCEPINFO* exception, UINT* argumentError) final {
        return core_.Invoke(id, reserved, locale, kinds, parameters, result, exception,
                            argumentError);
    }

    // For those who know the object without a reference: false when its last one is being dropped.
    bool AddReferenceUnlessLast() { return core_.AddReferenceUnlessLast(); }

  protected:
    // Objects are deleted by their core.
    ~AutomationObject() = default;

    EngineRecord& record() { return static_cast<EngineRecord&>(core_.record()); }

    // The check after each call, and the refusal of an argument that is not the object it should
    // be.
    HRESULT Check() { return core_.Check(); }
    HRESULT RefuseObject(HRESULT failure) { return core_.RefuseObject(failure); }

    // A member without a result: runs the operation and checks the record's error. Operations that
    // cannot fail do not clear the error of an earlier one, so it is done here for all.
    template <typename Operation>
    HRESULT Do(Operation&& operation) {
        core_.record().error().Clear();
        operation();
        return core_.Check();
    }

    // A member with a result, which is written whether or not the operation failed.
    template <typename Operation>
    HRESULT Return(VARIANT* result, Operation&& operation) {
        if (result == nullptr) return E_POINTER;
        core_.record().error().Clear();
        SetVariant(*result, operation());
        return core_.Check();
    }

    // A property that is one getter, or one setter, of the record.
    template <auto Getter>
    HRESULT GetBy(VARIANT* result) {
        return core_.Get(
            result, +[](Record& record) { return (static_cast<EngineRecord&>(record).*Getter)(); });
    }
    template <auto Setter>
    HRESULT PutBy(const VARIANT& value) {
        using Value = decltype(automation_object_detail::ParameterOf(Setter));
        return core_.Put(
            value, +[](Record& record, Value converted) {
                (static_cast<EngineRecord&>(record).*Setter)(converted);
            });
    }

  private:
    ObjectCore& core_;
};

// An object with its core, in one piece of memory.
template <typename Object>
class ObjectWithCore final {
  public:
    // A new object around a record, with `parts` for its constructor; null when there is no record
    // or memory is short.
    template <typename... Parts>
    static ComRef<IDispatch> Make(const ClassDescription& description,
                                  Ref<typename Object::RecordType> record, Parts&&... parts) {
        if (!record) return nullptr;
        auto* const made = new (std::nothrow)
            ObjectWithCore(description, std::move(record), std::forward<Parts>(parts)...);
        return ComRef<IDispatch>::Adopt(made != nullptr ? &made->object_ : nullptr);
    }

  private:
    template <typename... Parts>
    ObjectWithCore(const ClassDescription& description, Ref<Record> record, Parts&&... parts)
        : core_(description, std::move(record), this, &Delete),
          object_(core_, std::forward<Parts>(parts)...) {}

    static void Delete(void* whole) { delete static_cast<ObjectWithCore*>(whole); }

    ObjectCore core_;
    Object object_;  // goes first, and may use its record until then
};

}  // namespace kavrel
