#include "automation/quality_object.h"

#include <new>
#include <utility>

#include "KavrelCE_h.h"
#include "frame/automation_object.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&IQuality::get_PDOP>(L"PDOP", 1),
    Get<&IQuality::get_HDOP>(L"HDOP", 2),
    Get<&IQuality::get_VDOP>(L"VDOP", 3),
};

constexpr ClassDescription kClass = {CLSID_Quality, IID_IQuality, nullptr, kMembers};

class QualityObject final : public AutomationObject<IQuality, Quality> {
  public:
    explicit QualityObject(Ref<Quality> record) : AutomationObject(kClass, std::move(record)) {}

    STDMETHOD(get_PDOP)(VARIANT* result) override { return GetBy<&Quality::Pdop>(result); }
    STDMETHOD(get_HDOP)(VARIANT* result) override { return GetBy<&Quality::Hdop>(result); }
    STDMETHOD(get_VDOP)(VARIANT* result) override { return GetBy<&Quality::Vdop>(result); }
};

}  // namespace

ComRef<IDispatch> WrapQuality(Ref<Quality> record) {
    if (!record) return nullptr;
    return ComRef<IDispatch>::Adopt(new (std::nothrow) QualityObject(std::move(record)));
}

}  // namespace kavrel
