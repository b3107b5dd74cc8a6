#include "results/fix_builder.h"

namespace kavrel {

FixValues FixBuilder::Build(const SentenceValues& values) const {
    FixValues fix;
    if (!values.isValid) return fix;
    switch (values.type) {
        case SentenceType::Rmc:
        case SentenceType::Gll:
            fix.type = hasGga_ ? kFixWithAltitude : kFixWithoutAltitude;
            break;
        case SentenceType::Gga:
            fix.type = kFixWithAltitude;
            break;
        default:
            return fix;
    }
    fix.utc = values.utc;
    fix.position = values.position;
    if (values.type != SentenceType::Gga) AddKeptAltitude(fix);
    if (values.type != SentenceType::Rmc) AddKeptDate(fix);
    return fix;
}

void FixBuilder::AddKeptAltitude(FixValues& fix) const {
    if (!hasGga_) return;
    fix.position.altitudeMetres = ggaAltitudeMetres_;
    fix.position.ellipsoidalHeightMetres = ggaEllipsoidalHeightMetres_;
}

void FixBuilder::AddKeptDate(FixValues& fix) const {
    if (fix.utc.has_value() && rmcTime_.has_value()) fix.utc = fix.utc->OnDateOf(*rmcTime_);
}

void FixBuilder::Keep(SentenceType type, const FixValues& fix) {
    if (fix.type == kFixNone) return;
    if (type == SentenceType::Rmc) {
        rmcTime_ = fix.utc;
    } else if (type == SentenceType::Gga) {
        hasGga_ = true;
        ggaAltitudeMetres_ = fix.position.altitudeMetres;
        ggaEllipsoidalHeightMetres_ = fix.position.ellipsoidalHeightMetres;
    }
}

void FixBuilder::Clear() {
    hasGga_ = false;
    rmcTime_.reset();
}

}  // namespace kavrel
