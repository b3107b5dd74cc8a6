#include "automation/custom_datum_object.h"

#include <utility>

#include "KavrelCE_h.h"
#include "frame/automation_object.h"
#include "frame/free_threaded.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&ICustomDatum::get_SemiMajorAxis>("SemiMajorAxis", 1),
    Put<&ICustomDatum::put_SemiMajorAxis>("SemiMajorAxis", 1),
    Get<&ICustomDatum::get_E2>("E2", 2),
    Put<&ICustomDatum::put_E2>("E2", 2),
    Get<&ICustomDatum::get_DeltaX>("DeltaX", 3),
    Put<&ICustomDatum::put_DeltaX>("DeltaX", 3),
    Get<&ICustomDatum::get_DeltaY>("DeltaY", 4),
    Put<&ICustomDatum::put_DeltaY>("DeltaY", 4),
    Get<&ICustomDatum::get_DeltaZ>("DeltaZ", 5),
    Put<&ICustomDatum::put_DeltaZ>("DeltaZ", 5),
    Get<&ICustomDatum::get_RotX>("RotX", 6),
    Put<&ICustomDatum::put_RotX>("RotX", 6),
    Get<&ICustomDatum::get_RotY>("RotY", 7),
    Put<&ICustomDatum::put_RotY>("RotY", 7),
    Get<&ICustomDatum::get_RotZ>("RotZ", 8),
    Put<&ICustomDatum::put_RotZ>("RotZ", 8),
    Get<&ICustomDatum::get_ScaleFactor>("ScaleFactor", 9),
    Put<&ICustomDatum::put_ScaleFactor>("ScaleFactor", 9),
};

constexpr ClassDescription kClass = {CLSID_CustomDatum, IID_ICustomDatum, nullptr, kMembers};

class CustomDatumObject final : public AutomationObject<ICustomDatum, CustomDatum, FreeThreaded> {
  public:
    using AutomationObject::AutomationObject;

    STDMETHOD(QueryInterface)(REFIID id, void** object) override {
        const HRESULT found = AutomationObject::QueryInterface(id, object);
        if (found != E_NOINTERFACE) return found;
        return QueryMarshaler(*static_cast<ICustomDatum*>(this), id, object);
    }

    STDMETHOD(get_SemiMajorAxis)(VARIANT* result) override {
        return GetBy<&CustomDatum::SemiMajorAxis>(result);
    }
    STDMETHOD(put_SemiMajorAxis)(VARIANT value) override {
        return PutBy<&CustomDatum::PutSemiMajorAxis>(value);
    }
    STDMETHOD(get_E2)(VARIANT* result) override { return GetBy<&CustomDatum::E2>(result); }
    STDMETHOD(put_E2)(VARIANT value) override { return PutBy<&CustomDatum::PutE2>(value); }
    STDMETHOD(get_DeltaX)(VARIANT* result) override { return GetBy<&CustomDatum::DeltaX>(result); }
    STDMETHOD(put_DeltaX)(VARIANT value) override { return PutBy<&CustomDatum::PutDeltaX>(value); }
    STDMETHOD(get_DeltaY)(VARIANT* result) override { return GetBy<&CustomDatum::DeltaY>(result); }
    STDMETHOD(put_DeltaY)(VARIANT value) override { return PutBy<&CustomDatum::PutDeltaY>(value); }
    STDMETHOD(get_DeltaZ)(VARIANT* result) override { return GetBy<&CustomDatum::DeltaZ>(result); }
    STDMETHOD(put_DeltaZ)(VARIANT value) override { return PutBy<&CustomDatum::PutDeltaZ>(value); }
    STDMETHOD(get_RotX)(VARIANT* result) override { return GetBy<&CustomDatum::RotX>(result); }
    STDMETHOD(put_RotX)(VARIANT value) override { return PutBy<&CustomDatum::PutRotX>(value); }
    STDMETHOD(get_RotY)(VARIANT* result) override { return GetBy<&CustomDatum::RotY>(result); }
    STDMETHOD(put_RotY)(VARIANT value) override { return PutBy<&CustomDatum::PutRotY>(value); }
    STDMETHOD(get_RotZ)(VARIANT* result) override { return GetBy<&CustomDatum::RotZ>(result); }
    STDMETHOD(put_RotZ)(VARIANT value) override { return PutBy<&CustomDatum::PutRotZ>(value); }
    STDMETHOD(get_ScaleFactor)(VARIANT* result) override {
        return GetBy<&CustomDatum::ScaleFactor>(result);
    }
    STDMETHOD(put_ScaleFactor)(VARIANT value) override {
        return PutBy<&CustomDatum::PutScaleFactor>(value);
    }
};

}  // namespace

ComRef<IDispatch> CreateCustomDatumObject() {
    return ObjectWithCore<CustomDatumObject>::Make(kClass, TryMakeRef<CustomDatum>());
}

ComRef<IDispatch> WrapCustomDatum(Ref<CustomDatum> record) {
    return ObjectWithCore<CustomDatumObject>::Make(kClass, std::move(record));
}

}  // namespace kavrel
