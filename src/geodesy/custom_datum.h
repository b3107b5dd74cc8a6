// CustomDatum: a datum that a script describes.
#pragma once

#include "base/record.h"
#include "geodesy/datum_parameters.h"
#include "platform/lock.h"

namespace kavrel {

// Nine values, all 0 at first; none is checked. The rotations are arc-seconds at the properties and
// radians inside. Positions and grids share the object and see later changes on their next
// computation.
// Thread safety: every member may be called from any thread; a lock of its own guards the values.
class CustomDatum final : public Record {
  public:
    double SemiMajorAxis() const { return Values().ellipsoid.semiMajorAxisMetres; }
    double E2() const { return Values().ellipsoid.e2; }
    double DeltaX() const { return Values().toWgs84.dxMetres; }
    double DeltaY() const { return Values().toWgs84.dyMetres; }
    double DeltaZ() const { return Values().toWgs84.dzMetres; }
    double RotX() const;
    double RotY() const;
    double RotZ() const;
    double ScaleFactor() const { return Values().toWgs84.scale; }

    void PutSemiMajorAxis(double metres);
    void PutE2(double e2);  // stores the absolute value
    void PutDeltaX(double metres);
    void PutDeltaY(double metres);
    void PutDeltaZ(double metres);
    void PutRotX(double arcSeconds);
    void PutRotY(double arcSeconds);
    void PutRotZ(double arcSeconds);
    void PutScaleFactor(double fraction);

    // All nine at one moment.
    DatumParameters Values() const;

  private:
    template <typename Change>
    void Store(Change change);

    mutable Lock lock_;
    DatumParameters values_ KAVREL_GUARDED_BY(lock_);
};

}  // namespace kavrel
