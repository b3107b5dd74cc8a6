// The objects of the GGA, GLL and RMC events: the values of one sentence, and the sentence. The
// values do not change when a client changes the sentence.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "base/record.h"
#include "geodesy/position.h"
#include "nmea/nmea_sentence.h"
#include "results/nmea_time.h"
#include "results/sentence_values.h"

namespace kavrel {

class DecodedSentence : public Record {
  public:
    bool Valid();

    // The date value of automation; nothing when the sentence has no time that the calendar knows.
    std::optional<double> Utc();

    // A new Position each time. Null when the sentence is of another type.
    Ref<Position> MakePosition();

    // The sentence; when the values were changed, written anew from them first.
    NmeaSentence& sentence();
    const std::optional<NmeaTime>& time() const { return values_.utc; }

    // Gives the sentence to the caller. REQUIRES: nobody uses the object before the next Assign.
    Ref<NmeaSentence> TakeSentence() { return std::move(sentence_); }

  protected:
    DecodedSentence() = default;

    // Values of another type than `type` are not taken over.
    void Assign(Ref<NmeaSentence> sentence, const SentenceValues& values, SentenceType type,
                DatumId datum);

    const SentenceValues& values() const { return values_; }

    // For setters: the values will differ from the sentence.
    SentenceValues& ChangeValues() {
        haveValuesChanged_ = true;
        return values_;
    }

  private:
    virtual void Rewrite(NmeaSentence&) {}

    Ref<NmeaSentence> sentence_;
    SentenceValues values_;
    DatumId datum_ = kDatumWgs84;
    bool haveValuesChanged_ = false;
};

// Each is made of a sentence, or of a sentence with its values where these are known already.
// Positions are on `datum`. A sentence of another type leaves every value at its default.
template <SentenceType kType>
class DecodedSentenceOf : public DecodedSentence {
  public:
    DecodedSentenceOf(Ref<NmeaSentence> sentence, DatumId datum) {
        const SentenceValues values = DecodeValues(*sentence);
        Assign(std::move(sentence), values, datum);
    }
    DecodedSentenceOf(Ref<NmeaSentence> sentence, const SentenceValues& values, DatumId datum) {
        Assign(std::move(sentence), values, datum);
    }
    void Assign(Ref<NmeaSentence> sentence, const SentenceValues& values, DatumId datum) {
        DecodedSentence::Assign(std::move(sentence), values, kType, datum);
    }
};

class NmeaGga final : public DecodedSentenceOf<SentenceType::Gga> {
  public:
    using DecodedSentenceOf::DecodedSentenceOf;

    std::int16_t SatellitesInView();
    double Hdop();
};

class NmeaGll final : public DecodedSentenceOf<SentenceType::Gll> {
  public:
    using DecodedSentenceOf::DecodedSentenceOf;
};

class NmeaRmc final : public DecodedSentenceOf<SentenceType::Rmc> {
  public:
    using DecodedSentenceOf::DecodedSentenceOf;

    // In a speed unit; an unknown one counts as knots, unlike in Movement::Speed.
    double GroundSpeed(std::int32_t unit);
    double Heading();            // degrees
    double MagneticVariation();  // degrees, east positive

    // In a speed unit; an unknown one counts as knots. The sentence follows when it is next read.
    void SetSpeed(double speed, std::int32_t unit);

  private:
    void Rewrite(NmeaSentence& sentence) override;
};

}  // namespace kavrel
