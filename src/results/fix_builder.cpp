#include "results/fix_builder.h"

namespace kavrel {

std::optional<NmeaTime> TimeOf(std::string_view timeField, std::string_view dateField) {
    if (timeField.data() == nullptr) return std::nullopt;
    return NmeaTime::FromFields(dateField, timeField);
}

FixValues FixBuilder::Build(const NmeaSentence& sentence) const {
    switch (sentence.Type()) {
        case SentenceType::Rmc:
            return BuildFromRmc(sentence);
        case SentenceType::Gll:
            return BuildFromGll(sentence);
        case SentenceType::Gga:
            return BuildFromGga(sentence);
        default:
            return {};
    }
}

FixValues FixBuilder::BuildFromRmc(const NmeaSentence& sentence) const {
    RmcFields rmc;
    FixValues fix;
    if (!rmc.Decode(sentence) || !rmc.IsValid()) return fix;
    fix.position = rmc.position;
    fix.utc = TimeOf(rmc.time, rmc.date);
    AddKeptAltitude(fix);
    return fix;
}

FixValues FixBuilder::BuildFromGll(const NmeaSentence& sentence) const {
    GllFields gll;
    FixValues fix;
    if (!gll.Decode(sentence) || !gll.IsValid()) return fix;
    fix.position = gll.position;
    fix.utc = OnKeptDate(gll.time);
    AddKeptAltitude(fix);
    return fix;
}

FixValues FixBuilder::BuildFromGga(const NmeaSentence& sentence) const {
    GgaFields gga;
    FixValues fix;
    if (!gga.Decode(sentence) || !gga.IsValid()) return fix;
    fix.position = gga.position;
    fix.utc = OnKeptDate(gga.time);
    fix.type = kFixWithAltitude;
    return fix;
}

void FixBuilder::AddKeptAltitude(FixValues& fix) const {
    fix.type = hasGga_ ? kFixWithAltitude : kFixWithoutAltitude;
    if (!hasGga_) return;
    fix.position.altitude = ggaAltitude_.view();
    fix.position.geoidSeparation = ggaGeoidSeparation_.view();
}

std::optional<NmeaTime> FixBuilder::OnKeptDate(std::string_view timeField) const {
    const std::optional<NmeaTime> time = TimeOf(timeField);
    if (!time.has_value() || !rmcTime_.has_value()) return time;
    return time->OnDateOf(*rmcTime_);
}

void FixBuilder::Keep(SentenceType type, const FixValues& fix) {
    if (fix.type == kFixNone) return;
    if (type == SentenceType::Rmc) {
        rmcTime_ = fix.utc;
    } else if (type == SentenceType::Gga) {
        hasGga_ = true;
        ggaAltitude_.Assign(fix.position.altitude);
        ggaGeoidSeparation_.Assign(fix.position.geoidSeparation);
    }
}

void FixBuilder::Clear() {
    hasGga_ = false;
    rmcTime_.reset();
}

}  // namespace kavrel
