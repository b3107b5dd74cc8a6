// What the objects of the GGA, GLL and RMC events have in common: the values of one sentence, and
// the sentence. The values never change, even when a client changes the sentence.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "base/record.h"
#include "geodesy/position.h"
#include "nmea/nmea_sentence.h"
#include "nmea/sentence_fields.h"
#include "results/nmea_time.h"
#include "results/received_position.h"

namespace kavrel {

class DecodedSentence : public Record {
  public:
    bool Valid();

    // The date value of automation; nothing when the sentence has no time that the calendar knows.
    std::optional<double> Utc();

    // A new Position each time. Null when the sentence is of another type.
    Ref<Position> MakePosition();

    NmeaSentence& sentence() const { return *sentence_; }
    const std::optional<NmeaTime>& time() const { return utc_; }

  protected:
    explicit DecodedSentence(Ref<NmeaSentence> sentence) : sentence_(std::move(sentence)) {}

    // To be called from the constructor only.
    void SetCommonValues(bool isValid, const std::optional<NmeaTime>& utc,
                         const PositionFields& position, DatumId datum);

  private:
    Ref<NmeaSentence> sentence_;
    bool isValid_ = false;
    std::optional<NmeaTime> utc_;
    ReceivedPosition position_;
};

class NmeaGga final : public DecodedSentence {
  public:
    // Positions are on `datum`. A sentence of another type leaves every value at its default.
    NmeaGga(Ref<NmeaSentence> sentence, DatumId datum);

    std::int16_t SatellitesInView();
    double Hdop();

  private:
    std::int16_t satellitesInView_ = 0;
    double hdop_ = 0.0;
};

class NmeaGll final : public DecodedSentence {
  public:
    NmeaGll(Ref<NmeaSentence> sentence, DatumId datum);
};

class NmeaRmc final : public DecodedSentence {
  public:
    NmeaRmc(Ref<NmeaSentence> sentence, DatumId datum);

    // In a speed unit; an unknown one counts as knots, unlike in Movement::Speed.
    double GroundSpeed(std::int32_t unit);
    double Heading();            // degrees
    double MagneticVariation();  // degrees, east positive

  private:
    MovementValues movement_;
};

}  // namespace kavrel
