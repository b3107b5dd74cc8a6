// A map projection with its constants worked out: from a point on an ellipsoid to the plane and
// back.
//
// Invariants: immutable once made, so one may be used from several threads.
#pragma once

#include <cstdint>
#include <memory>

#include "geodesy/angle.h"
#include "geodesy/ellipsoid.h"
#include "geodesy/grid_table.h"
#include "geodesy/points.h"

namespace kavrel {

// A latitude may exceed the pole by round-off.
inline constexpr double kMaxLatitudeRads = kHalfPi + 1e-9;

class Projection {
  public:
    virtual ~Projection() = default;
    Projection(const Projection&) = delete;
    Projection& operator=(const Projection&) = delete;

    // Both answer false, and change nothing, when the projection does not cover the point.
    bool Forward(const GeoPoint& point, PlanePoint& plane) const;
    bool Inverse(const PlanePoint& plane, GeoPoint& point) const;

  protected:
    struct Origin {
        double longitudeRads;
        PlanePoint falseOrigin;
    };
    explicit Projection(const Origin& origin) : origin_(origin) {}

  private:
    // The projections proper: longitude from the origin's, in [-pi, pi], and metres from the false
    // origin. A result that is not finite need not be told: it counts as not covered.
    virtual bool Project(const GeoPoint& fromOrigin, PlanePoint& plane) const = 0;
    virtual bool Unproject(const PlanePoint& fromOrigin, GeoPoint& point) const = 0;

    Origin origin_;
};

// What a projection is prepared from. Angles in radians.
struct ProjectionParameters {
    Algorithm algorithm = Algorithm::None;
    std::int16_t zone = 0;  // System 34 only
    Ellipsoid ellipsoid;
    double falseEastingMetres = 0.0;
    double falseNorthingMetres = 0.0;
    double originLongitudeRads = 0.0;
    double originLatitudeRads = 0.0;
    double scaleFactor = 0.0;
    double parallel1Rads = 0.0;
    double parallel2Rads = 0.0;

    // By exact values.
    bool operator==(const ProjectionParameters&) const = default;
};

// Null when the algorithm is None or the values describe no projection at all.
std::unique_ptr<Projection> PrepareProjection(const ProjectionParameters& parameters);

}  // namespace kavrel
