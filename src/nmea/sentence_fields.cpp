#include "nmea/sentence_fields.h"

#include <array>

#include "base/number.h"

namespace kavrel {
namespace {

MovementValues DecodeVtg(const NmeaSentence& sentence) {
    std::array<std::string_view, 6> field;
    sentence.CopyFields(field);
    const double magneticCourse = ReadDouble(field[3]);

    MovementValues movement;
    movement.headingDegrees = ReadDouble(field[1]);
    movement.isValid = field[2].starts_with('T');
    movement.speedKnots = ReadDouble(field[5]);
    if (magneticCourse != 0.0) {
        movement.magneticVariationDegrees = movement.headingDegrees - magneticCourse;
    }
    return movement;
}

}  // namespace

bool GgaFields::Decode(const NmeaSentence& sentence) {
    if (sentence.Type() != SentenceType::Gga) return false;
    std::array<std::string_view, 12> field;
    sentence.CopyFields(field);
    time = field[1];
    position = {.latitude = field[2],
                .latitudeHemisphere = field[3],
                .longitude = field[4],
                .longitudeHemisphere = field[5],
                .altitude = field[9],
                .geoidSeparation = field[11]};
    quality = field[6];
    satellites = field[7];
    hdop = field[8];
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
    std::array<std::string_view, kWholeCount + 1> field;
    sentence.CopyFields(field);
    position = {.latitude = field[1],
                .latitudeHemisphere = field[2],
                .longitude = field[3],
                .longitudeHemisphere = field[4]};
    time = sentence.FieldCount() >= kWholeCount ? field[5] : std::string_view();
    status = field[6];
    return true;
}

bool RmcFields::Decode(const NmeaSentence& sentence) {
    if (sentence.Type() != SentenceType::Rmc) return false;
    std::array<std::string_view, 12> field;
    sentence.CopyFields(field);
    time = field[1];
    status = field[2];
    position = {.latitude = field[3],
                .latitudeHemisphere = field[4],
                .longitude = field[5],
                .longitudeHemisphere = field[6]};
    speedKnots = field[7];
    headingDegrees = field[8];
    date = field[9];
    magneticVariation = field[10];
    magneticVariationSense = field[11];
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
