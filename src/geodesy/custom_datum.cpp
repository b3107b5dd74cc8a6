#include "geodesy/custom_datum.h"

#include <cmath>

#include "geodesy/angle.h"

namespace kavrel {

DatumParameters CustomDatum::Values() const {
    const LockScope lock(lock_);
    return values_;
}

template <typename Change>
void CustomDatum::Store(Change change) {
    const LockScope lock(lock_);
    change(values_);
}

double CustomDatum::RotX() const {
    return Values().toWgs84.rxRads * kSecondsPerRad;
}

double CustomDatum::RotY() const {
    return Values().toWgs84.ryRads * kSecondsPerRad;
}

double CustomDatum::RotZ() const {
    return Values().toWgs84.rzRads * kSecondsPerRad;
}

void CustomDatum::PutSemiMajorAxis(double metres) {
    Store([=](DatumParameters& values) { values.ellipsoid.semiMajorAxisMetres = metres; });
}

void CustomDatum::PutE2(double e2) {
    Store([=](DatumParameters& values) { values.ellipsoid.e2 = std::fabs(e2); });
}

void CustomDatum::PutDeltaX(double metres) {
    Store([=](DatumParameters& values) { values.toWgs84.dxMetres = metres; });
}

void CustomDatum::PutDeltaY(double metres) {
    Store([=](DatumParameters& values) { values.toWgs84.dyMetres = metres; });
}

void CustomDatum::PutDeltaZ(double metres) {
    Store([=](DatumParameters& values) { values.toWgs84.dzMetres = metres; });
}

void CustomDatum::PutRotX(double arcSeconds) {
    Store([=](DatumParameters& values) { values.toWgs84.rxRads = arcSeconds * kRadsPerSecond; });
}

void CustomDatum::PutRotY(double arcSeconds) {
    Store([=](DatumParameters& values) { values.toWgs84.ryRads = arcSeconds * kRadsPerSecond; });
}

void CustomDatum::PutRotZ(double arcSeconds) {
    Store([=](DatumParameters& values) { values.toWgs84.rzRads = arcSeconds * kRadsPerSecond; });
}

void CustomDatum::PutScaleFactor(double fraction) {
    Store([=](DatumParameters& values) { values.toWgs84.scale = fraction; });
}

}  // namespace kavrel
