// What a client can see of a result object, as one text: a snapshot must give the same for ever.
#pragma once

#include <array>
#include <concepts>
#include <cstdio>
#include <optional>
#include <string>

#include "parser/event_sink.h"
#include "results/com_status.h"
#include "results/decoded_sentence.h"
#include "results/gps_fix.h"
#include "results/movement.h"
#include "results/quality.h"
#include "results/satellites.h"

namespace kavrel {

class Description {
  public:
    const std::string& text() const { return text_; }

    Description& operator<<(const std::string& text) {
        text_ += text + ' ';
        return *this;
    }
    template <std::integral Integer>
    Description& operator<<(Integer value) {
        return *this << std::to_string(value);
    }
    // All bits of it count.
    Description& operator<<(double value) {
        std::array<char, 40> digits;
        std::snprintf(digits.data(), digits.size(), "%a ", value);
        text_ += digits.data();
        return *this;
    }
    Description& operator<<(const std::optional<double>& value) {
        return value.has_value() ? *this << *value : *this << std::string("none");
    }
    Description& operator<<(Position* position) {
        if (position == nullptr) return *this << std::string("null");
        return *this << position->Latitude() << position->Longitude() << position->Altitude(0)
                     << position->Altitude(1) << position->Datum() << position->LatitudeString(0)
                     << position->LongitudeString(0) << position->LatitudeString(1)
                     << position->LongitudeString(1);
    }

  private:
    std::string text_;
};

inline void Describe(Description& all, DecodedSentence& decoded) {
    all << decoded.Valid() << decoded.Utc() << decoded.MakePosition().get();
}

// `object` is one of the event's; nothing is told of a sentence, which changes.
inline std::string Describe(ParserEvent event, Record& object) {
    Description all;
    switch (event) {
        case ParserEvent::Gga: {
            auto& gga = static_cast<NmeaGga&>(object);
            Describe(all, gga);
            all << gga.SatellitesInView() << gga.Hdop();
            break;
        }
        case ParserEvent::Gll:
            Describe(all, static_cast<NmeaGll&>(object));
            break;
        case ParserEvent::Rmc: {
            auto& rmc = static_cast<NmeaRmc&>(object);
            Describe(all, rmc);
            for (int unit = -1; unit <= 4; ++unit)
                all << rmc.GroundSpeed(unit);
            all << rmc.Heading() << rmc.MagneticVariation();
            break;
        }
        case ParserEvent::GpsFix: {
            auto& fix = static_cast<GpsFix&>(object);
            all << fix.FixType() << fix.Utc() << fix.MakePosition().get();
            break;
        }
        case ParserEvent::Movement: {
            auto& movement = static_cast<Movement&>(object);
            for (int unit = -1; unit <= 4; ++unit)
                all << movement.Speed(unit);
            all << movement.Heading() << movement.MagneticVariation();
            break;
        }
        case ParserEvent::Satellites: {
            auto& satellites = static_cast<Satellites&>(object);
            for (int i = 1; i <= satellites.Count(); ++i) {
                const Ref<Satellite> item = satellites.Item(i);
                all << item->Id() << item->Elevation() << item->Azimuth() << item->Snr()
                    << item->UsedForFix();
            }
            break;
        }
        case ParserEvent::Quality: {
            auto& quality = static_cast<Quality&>(object);
            all << quality.Pdop() << quality.Hdop() << quality.Vdop();
            break;
        }
        case ParserEvent::ComStatus: {
            auto& status = static_cast<ComStatus&>(object);
            all << status.ValidNmea() << status.ValidFix() << status.ComPort() << status.BaudRate();
            break;
        }
        case ParserEvent::Generic:
        case ParserEvent::Count:
            break;
    }
    return all.text();
}

}  // namespace kavrel
