#include "results/movement.h"

#include "results/speed.h"

namespace kavrel {

double Movement::Heading() {
    error().Clear();
    return values_.headingDegrees;
}

double Movement::MagneticVariation() {
    error().Clear();
    return values_.magneticVariationDegrees;
}

double Movement::Speed(std::int32_t unit) {
    error().Clear();
    if (!IsSpeedUnit(unit)) {
        error().Set(kErrorInvalidArgument, Message::InvalidParameter);
        return 0.0;
    }
    return ConvertSpeed(values_.speedKnots, kSpeedKnots, unit);
}

}  // namespace kavrel
