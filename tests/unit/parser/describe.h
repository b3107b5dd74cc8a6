// What a client can see of a result object, as one text: a snapshot must give the same for ever.
#pragma once

#include <optional>
#include <sstream>
#include <string>

#include "parser/event_queue.h"
#include "parser/event_sink.h"
#include "results/com_status.h"
#include "results/decoded_sentence.h"
#include "results/gps_fix.h"
#include "results/movement.h"
#include "results/quality.h"
#include "results/satellites.h"

namespace kavrel {

// The event that a queued one stands for.
inline ParserEvent EventOf(EventCode code) {
    for (const auto& [queued, event] : {std::pair(EventCode::GpsFix, ParserEvent::GpsFix),
                                        std::pair(EventCode::Satellites, ParserEvent::Satellites),
                                        std::pair(EventCode::Movement, ParserEvent::Movement),
                                        std::pair(EventCode::Quality, ParserEvent::Quality),
                                        std::pair(EventCode::ComStatus, ParserEvent::ComStatus)}) {
        if (queued == code) return event;
    }
    return ParserEvent::Generic;
}

class Description {
  public:
    // All bits of a number count.
    Description() { text_ << std::hexfloat; }

    std::string text() const { return text_.str(); }

    template <typename... Values>
    void Add(const Values&... values) {
        ((text_ << values << ' '), ...);
    }
    void AddPlaceAndTime(auto& object) {
        Add(object.Utc().has_value(), object.Utc().value_or(0));
        const Ref<Position> position = object.MakePosition();
        Add(static_cast<bool>(position));
        if (!position) return;
        Add(position->Latitude(), position->Longitude(), position->Altitude(0),
            position->Altitude(1), position->Datum());
        for (const int form : {0, 1})
            Add(position->LatitudeString(form), position->LongitudeString(form));
    }

  private:
    std::ostringstream text_;
};

// `object` is one of the event's; nothing is told of a sentence, which changes.
inline std::string Describe(ParserEvent event, Record& object) {
    Description all;
    if (event == ParserEvent::Gga || event == ParserEvent::Gll || event == ParserEvent::Rmc) {
        auto& decoded = static_cast<DecodedSentence&>(object);
        all.Add(decoded.Valid());
        all.AddPlaceAndTime(decoded);
    }
    if (event == ParserEvent::Gga) {
        auto& gga = static_cast<NmeaGga&>(object);
        all.Add(gga.SatellitesInView(), gga.Hdop());
    } else if (event == ParserEvent::Rmc) {
        auto& rmc = static_cast<NmeaRmc&>(object);
        for (int unit = -1; unit <= 4; ++unit)
            all.Add(rmc.GroundSpeed(unit));
        all.Add(rmc.Heading(), rmc.MagneticVariation());
    } else if (event == ParserEvent::GpsFix) {
        auto& fix = static_cast<GpsFix&>(object);
        all.Add(fix.FixType());
        all.AddPlaceAndTime(fix);
    } else if (event == ParserEvent::Movement) {
        auto& movement = static_cast<Movement&>(object);
        for (int unit = -1; unit <= 4; ++unit)
            all.Add(movement.Speed(unit));
        all.Add(movement.Heading(), movement.MagneticVariation());
    } else if (event == ParserEvent::Satellites) {
        auto& satellites = static_cast<Satellites&>(object);
        for (int i = 1; i <= satellites.Count(); ++i) {
            const Ref<Satellite> item = satellites.Item(i);
            all.Add(item->Id(), item->Elevation(), item->Azimuth(), item->Snr(),
                    item->UsedForFix());
        }
    } else if (event == ParserEvent::Quality) {
        auto& quality = static_cast<Quality&>(object);
        all.Add(quality.Pdop(), quality.Hdop(), quality.Vdop());
    } else if (event == ParserEvent::ComStatus) {
        auto& status = static_cast<ComStatus&>(object);
        all.Add(status.ValidNmea(), status.ValidFix(), status.ComPort(), status.BaudRate());
    }
    return all.text();
}

}  // namespace kavrel
