#include "results/gps_fix.h"

namespace kavrel {

GpsFix::GpsFix(const FixValues& fix, DatumId datum) : type_(fix.type), utc_(fix.utc) {
    if (fix.type != kFixNone) position_.Set(fix.position, datum);
}

std::int32_t GpsFix::FixType() {
    error().Clear();
    return type_;
}

std::optional<double> GpsFix::Utc() {
    error().Clear();
    return utc_.has_value() ? utc_->DateValue() : std::nullopt;
}

Ref<Position> GpsFix::MakePosition() {
    error().Clear();
    return position_.MakePosition();
}

}  // namespace kavrel
