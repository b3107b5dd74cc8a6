#include "automation/support/every_class.h"

#include "KavrelCE_h.h"
#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

template <DISPID event>
ComPtr<IDispatch> FromEvent() {
    return LastObjectOf(CreateDirectly(CLSID_NmeaParser).Get(), event, kEverySentence);
}

ComPtr<IDispatch> FirstSatellite() {
    return Get(FromEvent<kOnSatellites>().Get(), L"Item", {1}).value.object();
}

}  // namespace

std::span<const ObjectMaker> EveryClass() {
    static constexpr ObjectMaker kMakers[] = {
        {"INmeaParser", [] { return CreateDirectly(CLSID_NmeaParser); }},
        {"IPosition", [] { return CreateDirectly(CLSID_Position); }},
        {"ICustomGrid", [] { return CreateDirectly(CLSID_CustomGrid); }},
        {"ICustomDatum", [] { return CreateDirectly(CLSID_CustomDatum); }},
        {"INmeaSentence", [] { return MakeSentence(L"$GPXXX,7,,text"); }},
        {"INmeaGGA", &FromEvent<kGga>},
        {"INmeaGLL", &FromEvent<kGll>},
        {"INmeaRMC", &FromEvent<kRmc>},
        {"ISatellites", &FromEvent<kOnSatellites>},
        {"ISatellite", &FirstSatellite},
        {"IGpsFix", &FromEvent<kOnGpsFix>},
        {"IMovement", &FromEvent<kOnMovement>},
        {"IQuality", &FromEvent<kOnQuality>},
        {"IComStatus", &FromEvent<kOnComStatus>},
    };
    return kMakers;
}

ComPtr<IDispatch> LastObjectOf(IDispatch* parser, DISPID event, const std::wstring& text) {
    if (parser == nullptr) return nullptr;
    const Listener listener(parser);
    Call(parser, L"Parse", {text});
    ComPtr<IDispatch> last;
    for (const RecordedEvent& raised : listener->events()) {
        if (raised.id == event) last = raised.arguments[0].object();
    }
    return last;
}

}  // namespace kavrel::tests
