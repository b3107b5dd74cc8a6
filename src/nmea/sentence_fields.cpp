#include "nmea/sentence_fields.h"

#include "base/number.h"

namespace kavrel {
namespace {

MovementValues DecodeVtg(const NmeaSentence& sentence) {
    const double magneticCourse = ReadDouble(sentence.FieldOrEmpty(3));

    MovementValues movement;
    movement.headingDegrees = ReadDouble(sentence.FieldOrEmpty(1));
    movement.isValid = sentence.FieldOrEmpty(2).starts_with('T');
    movement.speedKnots = ReadDouble(sentence.FieldOrEmpty(5));
    if (magneticCourse != 0.0) {
        movement.magneticVariationDegrees = movement.headingDegrees - magneticCourse;
    }
    return movement;
}

}  // namespace

bool GgaFields::Decode(const NmeaSentence& sentence) {
    if (sentence.Type() != SentenceType::Gga) return false;
    time = sentence.FieldOrEmpty(1);
    position = {.latitude = sentence.FieldOrEmpty(2),
                .latitudeHemisphere = sentence.FieldOrEmpty(3),
                .longitude = sentence.FieldOrEmpty(4),
                .longitudeHemisphere = sentence.FieldOrEmpty(5),
                .altitude = sentence.FieldOrEmpty(9),
                .geoidSeparation = sentence.FieldOrEmpty(11)};
    quality = sentence.FieldOrEmpty(6);
    satellites = sentence.FieldOrEmpty(7);
    hdop = sentence.FieldOrEmpty(8);
    return true;
}

std::int16_t GgaFields::SatellitesInView() const {
    return static_cast<std::int16_t>(ReadInteger(satellites));
}

double GgaFields::Hdop() const {
    return ReadDouble(hdop);
}

bool GllFields::Decode(const NmeaSentence& sentence) {
    if (sentence.Type() != SentenceType::Gll) return false;
    constexpr std::int32_t kWholeCount = 6;
    position = {.latitude = sentence.FieldOrEmpty(1),
                .latitudeHemisphere = sentence.FieldOrEmpty(2),
                .longitude = sentence.FieldOrEmpty(3),
                .longitudeHemisphere = sentence.FieldOrEmpty(4)};
    time = sentence.FieldCount() >= kWholeCount ? sentence.FieldOrEmpty(5) : std::string_view();
    status = sentence.FieldOrEmpty(6);
    return true;
}

bool RmcFields::Decode(const NmeaSentence& sentence) {
    if (sentence.Type() != SentenceType::Rmc) return false;
    time = sentence.FieldOrEmpty(1);
    status = sentence.FieldOrEmpty(2);
    position = {.latitude = sentence.FieldOrEmpty(3),
                .latitudeHemisphere = sentence.FieldOrEmpty(4),
                .longitude = sentence.FieldOrEmpty(5),
                .longitudeHemisphere = sentence.FieldOrEmpty(6)};
    speedKnots = sentence.FieldOrEmpty(7);
    headingDegrees = sentence.FieldOrEmpty(8);
    date = sentence.FieldOrEmpty(9);
    magneticVariation = sentence.FieldOrEmpty(10);
    magneticVariationSense = sentence.FieldOrEmpty(11);
    return true;
}

MovementValues RmcFields::Movement() const {
    const double variation = ReadDouble(magneticVariation);
    const bool isWest = magneticVariationSense.starts_with('W') && variation != 0.0;
    return {.speedKnots = ReadDouble(speedKnots),
            .headingDegrees = ReadDouble(headingDegrees),
            .magneticVariationDegrees = isWest ? -variation : variation,
            .isValid = IsValid()};
}

MovementValues DecodeMovement(const NmeaSentence& sentence) {
    if (sentence.Type() == SentenceType::Vtg) return DecodeVtg(sentence);
    RmcFields rmc;
    return rmc.Decode(sentence) ? rmc.Movement() : MovementValues();
}

QualityValues DecodeQuality(const NmeaSentence& sentence) {
    if (sentence.Type() != SentenceType::Gsa) return {};
    return {.hdop = ReadDouble(sentence.FieldOrEmpty(16)),
            .vdop = ReadDouble(sentence.FieldOrEmpty(17)),
            .pdop = ReadDouble(sentence.FieldOrEmpty(15))};
}

}  // namespace kavrel
