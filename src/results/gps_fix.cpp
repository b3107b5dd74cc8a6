#include "results/gps_fix.h"

namespace kavrel {

void GpsFix::Assign(const FixValues& fix, DatumId datum) {
    error().Clear();
    fix_ = fix;
    datum_ = datum;
}

std::int32_t GpsFix::FixType() {
    error().Clear();
    return fix_.type;
}

std::optional<double> GpsFix::Utc() {
    error().Clear();
    return fix_.utc.has_value() ? fix_.utc->DateValue() : std::nullopt;
}

Ref<Position> GpsFix::MakePosition() {
    error().Clear();
    if (fix_.type == kFixNone) return nullptr;
    return MakeRef<Position>(fix_.position, datum_);
}

}  // namespace kavrel
