#include "automation/gps_fix_object.h"

#include <new>
#include <utility>

#include "KavrelCE_h.h"
#include "automation/position_object.h"
#include "frame/automation_object.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&IGpsFix::get_UTC>(L"UTC", 1),
    Get<&IGpsFix::get_Position>(L"Position", 2),
    Get<&IGpsFix::get_FixType>(L"FixType", 3),
};

constexpr ClassDescription kClass = {CLSID_GpsFix, IID_IGpsFix, nullptr, kMembers};

class GpsFixObject final : public AutomationObject<IGpsFix, GpsFix> {
  public:
    explicit GpsFixObject(Ref<GpsFix> record) : AutomationObject(kClass, std::move(record)) {}

    STDMETHOD(get_UTC)(VARIANT* result) override {
        if (result == nullptr) return E_POINTER;
        SetVariantToDate(*result, record().Utc());
        return Check(record().error());
    }
    // Always succeeds: a record without a position gives a null object.
    STDMETHOD(get_Position)(VARIANT* result) override {
        if (result == nullptr) return E_POINTER;
        SetVariant(*result, WrapPosition(record().MakePosition()));
        return S_OK;
    }
    STDMETHOD(get_FixType)(VARIANT* result) override { return GetBy<&GpsFix::FixType>(result); }
};

}  // namespace

ComRef<IDispatch> WrapGpsFix(Ref<GpsFix> record) {
    if (!record) return nullptr;
    return ComRef<IDispatch>::Adopt(new (std::nothrow) GpsFixObject(std::move(record)));
}

}  // namespace kavrel
