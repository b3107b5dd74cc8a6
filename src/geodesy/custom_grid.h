// CustomGrid: a grid that a script describes.
#pragma once

#include <cstdint>

#include "base/record.h"
#include "geodesy/datum.h"
#include "geodesy/projection.h"
#include "platform/lock.h"

namespace kavrel {

// Ten properties, none checked when put; angles in radians. A new grid has neither datum nor
// algorithm, and cannot be computed until it has. Putting a custom datum makes the datum 28.
// Positions share the object and see later changes on their next computation.
// Thread safety: every member may be called from any thread; a lock of its own guards the values.
// It is held for one property only, and may be taken under a Position's lock.
class CustomGrid final : public Record {
  public:
    // The values at one moment. The projection's ellipsoid is left empty: it is the datum's.
    struct Definition {
        DatumReference datum{0, nullptr};
        std::int16_t algorithm = 0;  // as put; codes beyond the enumeration are kept
        ProjectionParameters projection;
    };
    Definition Values() const;

    // Equal values; custom datums by their values, too.
    static bool AreEqual(const CustomGrid& a, const CustomGrid& b);

    DatumId Datum() const { return Values().datum.id; }
    // May be null.
    Ref<kavrel::CustomDatum> CustomDatum() const { return Values().datum.custom; }
    std::int16_t Algorithm() const { return Values().algorithm; }
    double FalseEasting() const { return Values().projection.falseEastingMetres; }
    double FalseNorthing() const { return Values().projection.falseNorthingMetres; }
    double LongitudeOfOrigin() const { return Values().projection.originLongitudeRads; }
    double LatitudeOfOrigin() const { return Values().projection.originLatitudeRads; }
    double ScaleFactor() const { return Values().projection.scaleFactor; }
    double LatitudeSP1() const { return Values().projection.parallel1Rads; }
    double LatitudeSP2() const { return Values().projection.parallel2Rads; }

    void PutDatum(DatumId datum);
    // Null is refused: the error slot says so, and nothing changes.
    void PutCustomDatum(Ref<kavrel::CustomDatum> datum);
    void PutAlgorithm(std::int16_t code);
    void PutFalseEasting(double metres);
    void PutFalseNorthing(double metres);
    void PutLongitudeOfOrigin(double rads);
    void PutLatitudeOfOrigin(double rads);
    void PutScaleFactor(double factor);
    void PutLatitudeSP1(double rads);
    void PutLatitudeSP2(double rads);

  private:
    template <typename Change>
    void Store(Change change);

    mutable Lock lock_;
    Definition values_ KAVREL_GUARDED_BY(lock_);
};

}  // namespace kavrel
