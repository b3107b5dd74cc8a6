#include "results/decoded_sentence.h"

#include "results/fix_builder.h"
#include "results/speed.h"

namespace kavrel {

bool DecodedSentence::Valid() {
    error().Clear();
    return isValid_;
}

std::optional<double> DecodedSentence::Utc() {
    error().Clear();
    return utc_.has_value() ? utc_->DateValue() : std::nullopt;
}

Ref<Position> DecodedSentence::MakePosition() {
    error().Clear();
    return position_.MakePosition();
}

void DecodedSentence::SetCommonValues(bool isValid, const std::optional<NmeaTime>& utc,
                                      const PositionFields& position, DatumId datum) {
    isValid_ = isValid;
    utc_ = utc;
    position_.Set(position, datum);
}

NmeaGga::NmeaGga(Ref<NmeaSentence> sentence, DatumId datum) : DecodedSentence(std::move(sentence)) {
    GgaFields gga;
    if (!gga.Decode(this->sentence())) return;
    SetCommonValues(gga.IsValid(), TimeOf(gga.time), gga.position, datum);
    satellitesInView_ = gga.SatellitesInView();
    hdop_ = gga.Hdop();
}

std::int16_t NmeaGga::SatellitesInView() {
    error().Clear();
    return satellitesInView_;
}

double NmeaGga::Hdop() {
    error().Clear();
    return hdop_;
}

NmeaGll::NmeaGll(Ref<NmeaSentence> sentence, DatumId datum) : DecodedSentence(std::move(sentence)) {
    GllFields gll;
    if (!gll.Decode(this->sentence())) return;
    SetCommonValues(gll.IsValid(), TimeOf(gll.time), gll.position, datum);
}

NmeaRmc::NmeaRmc(Ref<NmeaSentence> sentence, DatumId datum) : DecodedSentence(std::move(sentence)) {
    RmcFields rmc;
    if (!rmc.Decode(this->sentence())) return;
    SetCommonValues(rmc.IsValid(), TimeOf(rmc.time, rmc.date), rmc.position, datum);
    movement_ = rmc.Movement();
}

double NmeaRmc::GroundSpeed(std::int32_t unit) {
    error().Clear();
    return ConvertSpeed(movement_.speedKnots, kSpeedKnots, unit);
}

double NmeaRmc::Heading() {
    error().Clear();
    return movement_.headingDegrees;
}

double NmeaRmc::MagneticVariation() {
    error().Clear();
    return movement_.magneticVariationDegrees;
}

}  // namespace kavrel
