#include "geodesy/custom_grid.h"

#include <utility>

namespace kavrel {

CustomGrid::Definition CustomGrid::Values() const {
    const LockScope lock(lock_);
    return values_;
}

bool CustomGrid::AreEqual(const CustomGrid& a, const CustomGrid& b) {
    if (&a == &b) return true;
    const Definition one = a.Values();
    const Definition other = b.Values();
    return one.algorithm == other.algorithm && one.projection == other.projection &&
           IsSameDatum(one.datum, other.datum);
}

template <typename Change>
void CustomGrid::Store(Change change) {
    const LockScope lock(lock_);
    error().Clear();
    change(values_);
}

void CustomGrid::PutDatum(DatumId datum) {
    Store([=](Definition& values) { values.datum.id = datum; });
}

void CustomGrid::PutCustomDatum(Ref<kavrel::CustomDatum> datum) {
    Store([&](Definition& values) {
        if (!datum) {
            error().Set(kErrorInvalidArgument, Message::CustomDatumNull);
            return;
        }
        std::swap(values.datum.custom, datum);  // the old one is dropped after the lock
        values.datum.id = kDatumCustom;
    });
}

void CustomGrid::PutAlgorithm(std::int16_t code) {
    Store([=](Definition& values) { values.algorithm = code; });
}

void CustomGrid::PutFalseEasting(double metres) {
    Store([=](Definition& values) { values.projection.falseEastingMetres = metres; });
}

void CustomGrid::PutFalseNorthing(double metres) {
    Store([=](Definition& values) { values.projection.falseNorthingMetres = metres; });
}

void CustomGrid::PutLongitudeOfOrigin(double rads) {
    Store([=](Definition& values) { values.projection.originLongitudeRads = rads; });
}

void CustomGrid::PutLatitudeOfOrigin(double rads) {
    Store([=](Definition& values) { values.projection.originLatitudeRads = rads; });
}

void CustomGrid::PutScaleFactor(double factor) {
    Store([=](Definition& values) { values.projection.scaleFactor = factor; });
}

void CustomGrid::PutLatitudeSP1(double rads) {
    Store([=](Definition& values) { values.projection.parallel1Rads = rads; });
}

void CustomGrid::PutLatitudeSP2(double rads) {
    Store([=](Definition& values) { values.projection.parallel2Rads = rads; });
}

}  // namespace kavrel
