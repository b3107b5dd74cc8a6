#include "results/sentence_values.h"

namespace kavrel {
namespace {

std::optional<NmeaTime> TimeOf(std::string_view timeField, std::string_view dateField = {}) {
    if (timeField.data() == nullptr) return std::nullopt;
    return NmeaTime::FromFields(dateField, timeField);
}

ReceiverPositionValues PositionOf(const PositionFields& fields) {
    return ReceiverPositionValues({.latitude = fields.latitude,
                                   .longitude = fields.longitude,
                                   .latitudeHemisphere = fields.latitudeHemisphere,
                                   .longitudeHemisphere = fields.longitudeHemisphere,
                                   .altitude = fields.altitude,
                                   .geoidalSeparation = fields.geoidSeparation});
}

void ReadGga(SentenceValues& values, const NmeaSentence& sentence) {
    GgaFields gga;
    gga.Decode(sentence);
    values.isValid = gga.IsValid();
    values.utc = TimeOf(gga.time);
    values.position = PositionOf(gga.position);
    values.satellitesInView = gga.SatellitesInView();
    values.hdop = gga.Hdop();
}

void ReadGll(SentenceValues& values, const NmeaSentence& sentence) {
    GllFields gll;
    gll.Decode(sentence);
    values.isValid = gll.IsValid();
    values.utc = TimeOf(gll.time);
    values.position = PositionOf(gll.position);
}

void ReadRmc(SentenceValues& values, const NmeaSentence& sentence) {
    RmcFields rmc;
    rmc.Decode(sentence);
    values.isValid = rmc.IsValid();
    values.utc = TimeOf(rmc.time, rmc.date);
    values.position = PositionOf(rmc.position);
    values.movement = rmc.Movement();
}

}  // namespace

SentenceValues DecodeValues(const NmeaSentence& sentence) {
    SentenceValues values;
    values.type = sentence.Type();
    switch (values.type) {
        case SentenceType::Gga:
            ReadGga(values, sentence);
            break;
        case SentenceType::Gll:
            ReadGll(values, sentence);
            break;
        case SentenceType::Rmc:
            ReadRmc(values, sentence);
            break;
        case SentenceType::Vtg:
            values.movement = DecodeMovement(sentence);
            break;
        default:
            break;
    }
    return values;
}

}  // namespace kavrel
