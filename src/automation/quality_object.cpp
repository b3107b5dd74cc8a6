#include "automation/quality_object.h"

#include <utility>

#include "KavrelCE_h.h"
#include "frame/automation_object.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&IQuality::get_PDOP>("PDOP", 1),
    Get<&IQuality::get_HDOP>("HDOP", 2),
    Get<&IQuality::get_VDOP>("VDOP", 3),
};

constexpr ClassDescription kClass = {CLSID_Quality, IID_IQuality, nullptr, kMembers};

class QualityObject final : public AutomationObject<IQuality, Quality> {
  public:
    using AutomationObject::AutomationObject;

    STDMETHOD(get_PDOP)(VARIANT* result) override { return GetBy<&Quality::Pdop>(result); }
    STDMETHOD(get_HDOP)(VARIANT* result) override { return GetBy<&Quality::Hdop>(result); }
    STDMETHOD(get_VDOP)(VARIANT* result) override { return GetBy<&Quality::Vdop>(result); }
};

}  // namespace

ComRef<IDispatch> WrapQuality(Ref<Quality> record) {
    return ObjectWithCore<QualityObject>::Make(kClass, std::move(record));
}

}  // namespace kavrel
