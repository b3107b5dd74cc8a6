#include "results/decoded_sentence.h"

#include "results/speed.h"

namespace kavrel {

void DecodedSentence::Assign(Ref<NmeaSentence> sentence, const SentenceValues& values,
                             SentenceType type, DatumId datum) {
    error().Clear();
    sentence_ = std::move(sentence);
    values_ = values.type == type ? values : SentenceValues();
    datum_ = datum;
    haveValuesChanged_ = false;
}

NmeaSentence& DecodedSentence::sentence() {
    if (std::exchange(haveValuesChanged_, false)) Rewrite(*sentence_);
    return *sentence_;
}

bool DecodedSentence::Valid() {
    error().Clear();
    return values_.isValid;
}

std::optional<double> DecodedSentence::Utc() {
    error().Clear();
    return values_.utc.has_value() ? values_.utc->DateValue() : std::nullopt;
}

Ref<Position> DecodedSentence::MakePosition() {
    error().Clear();
    if (values_.type == SentenceType::Other) return nullptr;
    return MakeRef<Position>(values_.position, datum_);
}

std::int16_t NmeaGga::SatellitesInView() {
    error().Clear();
    return values().satellitesInView;
}

double NmeaGga::Hdop() {
    error().Clear();
    return values().hdop;
}

double NmeaRmc::GroundSpeed(std::int32_t unit) {
    error().Clear();
    return ConvertSpeed(values().movement.speedKnots, kSpeedKnots, unit);
}

double NmeaRmc::Heading() {
    error().Clear();
    return values().movement.headingDegrees;
}

double NmeaRmc::MagneticVariation() {
    error().Clear();
    return values().movement.magneticVariationDegrees;
}

void NmeaRmc::SetSpeed(double speed, std::int32_t unit) {
    error().Clear();
    ChangeValues().movement.speedKnots = ConvertSpeed(speed, unit, kSpeedKnots);
}

}  // namespace kavrel
