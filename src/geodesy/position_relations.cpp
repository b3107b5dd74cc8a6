// The members of Position that relate two points or move one.
//
// The sphere is the library's own: neither the equatorial nor the mean radius.

#include <algorithm>
#include <cmath>

#include "geodesy/angle.h"
#include "geodesy/position.h"

namespace kavrel {
namespace {

constexpr double kSphereRadiusMetres = 6366710.0;
constexpr double kRadsPerMetre = 1.5706699378485905e-7;

constexpr std::int32_t kMethodMetres = 1;
constexpr std::int32_t kMethodRads = 2;
constexpr std::int32_t kMethodGrid = 3;

bool IsGreatCircle(std::int32_t method) {
    return method == kMethodMetres || method == kMethodRads;
}

double CentralAngle(const GeoPoint& a, const GeoPoint& b) {
    const double sinLongitude = std::sin((a.longitudeRads - b.longitudeRads) / 2.0);
    const double sinLatitude = std::sin((a.latitudeRads - b.latitudeRads) / 2.0);
    const double h =
        sinLongitude * sinLongitude * std::cos(b.latitudeRads) * std::cos(a.latitudeRads) +
        sinLatitude * sinLatitude;
    return 2.0 * std::asin(std::sqrt(h));
}

double DegreesBelow360(double rads) {
    const double degrees = rads * kDegreesPerRad;
    return degrees == 360.0 ? 0.0 : degrees;
}

// The initial direction of the great circle of length d from a to b.
double BearingOnSphere(const GeoPoint& a, const GeoPoint& b, double d) {
    constexpr double kAlmostZero = 1e-16;
    const double cosLatitude = std::cos(a.latitudeRads);
    if (cosLatitude < kAlmostZero) return a.latitudeRads > 0.0 ? 180.0 : 0.0;

    double bearing = 0.0;
    if (std::sin(d) >= kAlmostZero) {
        const double c = (std::sin(b.latitudeRads) - std::cos(d) * std::sin(a.latitudeRads)) /
                         (std::sin(d) * cosLatitude);
        bearing = std::acos(std::clamp(c, -1.0, 1.0));
    }
    if (std::sin(a.longitudeRads - b.longitudeRads) >= 0.0) bearing = kTwoPi - bearing;
    return DegreesBelow360(bearing);
}

}  // namespace

bool Position::ReadGeoPoint(GeoPoint& point) {
    BeginGeographic();
    point = {state_.coordinate.latitudeRads, state_.coordinate.longitudeRads};
    return !error().IsSet();
}

bool Position::ReadPlanePoint(PlanePoint& plane) {
    Begin();
    if (!UpdateGridSide()) return false;
    plane = {state_.coordinate.eastingMetres, state_.coordinate.northingMetres};
    return true;
}

// The other position's point on this one's datum.
bool Position::ReadOtherGeoPoint(Position& other, GeoPoint& point) {
    if (IsSameDatum(&other)) {
        if (other.ReadGeoPoint(point)) return !error().IsSet();
        error().CopyFrom(&other.error());
        return false;
    }
    const Ref<Position> copy = other.Copy();
    copy->MakeSameDatum(this);
    if (!copy->error().IsSet() && copy->ReadGeoPoint(point)) return !error().IsSet();
    error().CopyFrom(&copy->error());
    return false;
}

// The other position's point in this one's grid. This position may fail, too: the copy asks it for
// its zone.
bool Position::ReadOtherPlanePoint(Position& other, PlanePoint& plane) {
    if (IsSameGrid(&other)) {
        if (other.ReadPlanePoint(plane)) return !error().IsSet();
        error().CopyFrom(&other.error());
        return false;
    }
    const Ref<Position> copy = other.Copy();
    copy->MakeSameGrid(this);
    if (!copy->error().IsSet() && copy->ReadPlanePoint(plane)) return !error().IsSet();
    error().CopyFrom(&copy->error());
    return false;
}

double Position::Distance(Position* other, std::int32_t method) {
    const Scope scope(*this, other);
    error().Clear();
    if (other == nullptr) {
        Report(Message::PositionNull);
        return 0.0;
    }
    if (IsGreatCircle(method)) {
        GeoPoint here;
        GeoPoint there;
        if (!ReadGeoPoint(here) || !ReadOtherGeoPoint(*other, there)) return 0.0;
        const double angle = CentralAngle(here, there);
        return method == kMethodMetres ? angle * kSphereRadiusMetres : angle;
    }
    if (method == kMethodGrid) {
        PlanePoint here;
        PlanePoint there;
        if (!ReadPlanePoint(here) || !ReadOtherPlanePoint(*other, there)) return 0.0;
        const double dn = there.northingMetres - here.northingMetres;
        const double de = there.eastingMetres - here.eastingMetres;
        return std::sqrt(dn * dn + de * de);
    }
    Report(Message::UnknownDistanceMethod);
    return 0.0;
}

double Position::Bearing(Position* other, std::int32_t method) {
    const Scope scope(*this, other);
    error().Clear();
    if (other == nullptr) {
        Report(Message::PositionNull);
        return 0.0;
    }
    if (IsGreatCircle(method)) return GreatCircleBearing(*other);
    if (method == kMethodGrid) return GridBearing(*other);
    Report(Message::UnknownBearingMethod);
    return 0.0;
}

double Position::GreatCircleBearing(Position& other) {
    constexpr double kSamePointRads = 1e-16;
    const double d = Distance(&other, kMethodRads);
    if (error().IsSet() || d <= kSamePointRads) return 0.0;

    // Unlike the distance, the bearing takes both points as they are, whatever their datums.
    GeoPoint here;
    GeoPoint there;
    if (!ReadGeoPoint(here)) return 0.0;
    if (!other.ReadGeoPoint(there)) {
        error().CopyFrom(&other.error());
        return 0.0;
    }
    return BearingOnSphere(here, there, d);
}

double Position::GridBearing(Position& other) {
    PlanePoint here;
    PlanePoint there;
    if (!ReadPlanePoint(here) || !ReadOtherPlanePoint(other, there)) return 0.0;
    const double angle = std::atan2(there.northingMetres - here.northingMetres,
                                    there.eastingMetres - here.eastingMetres);
    const double bearing = kHalfPi - angle;
    return DegreesBelow360(bearing < 0.0 ? bearing + kTwoPi : bearing);
}

void Position::Move(double distance, double bearingDegrees, std::int32_t method) {
    const Scope scope(*this);
    error().Clear();
    const double bearing = bearingDegrees * kRadsPerDegree;
    if (IsGreatCircle(method)) {
        GeoPoint p;
        if (ReadGeoPoint(p)) {
            const double d = method == kMethodMetres ? distance * kRadsPerMetre : distance;
            const double sine = std::cos(bearing) * std::sin(d) * std::cos(p.latitudeRads) +
                                std::cos(d) * std::sin(p.latitudeRads);
            // Round-off at a pole may carry the sine beyond 1.
            const double latitude = std::asin(std::clamp(sine, -1.0, 1.0));
            const double longitude =
                p.longitudeRads +
                std::atan2(std::cos(p.latitudeRads) * std::sin(d) * std::sin(bearing),
                           std::cos(d) - std::sin(latitude) * std::sin(p.latitudeRads));
            PutLatitudeRads(latitude);
            if (!error().IsSet()) StoreLongitude(longitude);
        }
    } else if (method == kMethodGrid) {
        PlanePoint p;
        if (ReadPlanePoint(p)) {
            const double angle = kHalfPi - bearing;
            PutEasting(p.eastingMetres + distance * std::cos(angle));
            PutNorthing(p.northingMetres + distance * std::sin(angle));
        }
    } else {
        Report(Message::UnknownMoveMethod);
    }
    CountChange();  // once more, also after an error
}

}  // namespace kavrel
