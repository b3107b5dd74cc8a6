#include "automation/parser_events.h"

#include <array>
#include <cstddef>
#include <span>

#include "automation/com_status_object.h"
#include "automation/gps_fix_object.h"
#include "automation/movement_object.h"
#include "automation/nmea_gga_object.h"
#include "automation/nmea_gll_object.h"
#include "automation/nmea_rmc_object.h"
#include "automation/nmea_sentence_object.h"
#include "automation/quality_object.h"
#include "automation/satellites_object.h"

namespace kavrel {
namespace {

// A new object around the record of an event.
template <typename EngineRecord, ComRef<IDispatch> (*Wrap)(Ref<EngineRecord>)>
ComRef<IDispatch> WrapAs(Record& record) {
    return Wrap(Ref<EngineRecord>::Share(static_cast<EngineRecord*>(&record)));
}

struct EventRow {
    ParserEvent event;
    DISPID id;
    ComRef<IDispatch> (*wrap)(Record& record);
    bool hasSentence;  // as a second object
};

// In the order of the enumeration, which is not that of the dispids.
constexpr std::array kEvents = {
    EventRow{ParserEvent::Generic, 1, &WrapAs<NmeaSentence, &WrapNmeaSentence>, false},
    EventRow{ParserEvent::Gga, 2, &WrapAs<NmeaGga, &WrapNmeaGGA>, true},
    EventRow{ParserEvent::Gll, 3, &WrapAs<NmeaGll, &WrapNmeaGLL>, true},
    EventRow{ParserEvent::Rmc, 4, &WrapAs<NmeaRmc, &WrapNmeaRMC>, true},
    EventRow{ParserEvent::GpsFix, 6, &WrapAs<GpsFix, &WrapGpsFix>, false},
    EventRow{ParserEvent::Movement, 7, &WrapAs<Movement, &WrapMovement>, false},
    EventRow{ParserEvent::Satellites, 5, &WrapAs<Satellites, &WrapSatellites>, false},
    EventRow{ParserEvent::Quality, 8, &WrapAs<Quality, &WrapQuality>, false},
    EventRow{ParserEvent::ComStatus, 9, &WrapAs<ComStatus, &WrapComStatus>, false},
};

constexpr bool IsInOrder() {
    for (std::size_t i = 0; i < kEvents.size(); ++i) {
        if (kEvents[i].event != static_cast<ParserEvent>(i)) return false;
    }
    return true;
}
static_assert(kEvents.size() == static_cast<std::size_t>(ParserEvent::Count) && IsInOrder());

}  // namespace

void RaiseParserEvent(ConnectionPoint& sinks, ParserEvent event, Record& object) {
    const EventRow& row = kEvents[static_cast<std::size_t>(event)];
    const ComRef<IDispatch> first = row.wrap(object);
    ComRef<IDispatch> sentence;
    if (row.hasSentence) {
        NmeaSentence& record = static_cast<DecodedSentence&>(object).sentence();
        sentence = WrapNmeaSentence(Ref<NmeaSentence>::Share(&record));
    }
    IDispatch* const objects[] = {first.get(), sentence.get()};
    sinks.Raise(row.id, std::span(objects).first(row.hasSentence ? 2 : 1));
}

}  // namespace kavrel
