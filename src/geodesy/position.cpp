#include "geodesy/position.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "base/number.h"
#include "geodesy/angle.h"
#include "geodesy/longitude.h"
#include "geodesy/whole_number.h"

namespace kavrel {
namespace {

// Reads [d]ddmm.mmmm: the two digits before the point and what follows it are minutes.
Dms DmsFromText(std::string_view text) {
    const std::size_t whole = std::min(text.find('.'), text.size());
    const std::size_t degreeDigits = whole > 2 ? whole - 2 : 0;
    const std::string_view minutes = text.substr(degreeDigits, whole - degreeDigits);
    return {ToInt16(ReadInteger(text.substr(0, degreeDigits))), ToInt16(ReadInteger(minutes)),
            ReadDouble(text.substr(whole)) * 60.0};
}

double RadsFromDms(const Dms& dms, bool isNegative) {
    const double rads = (dms.degrees + dms.minutes / 60.0 + dms.seconds / 3600.0) * kRadsPerDegree;
    return isNegative ? -rads : rads;
}

double RadsFromParts(double degrees, double minutes, double seconds, bool isNegative) {
    const double rads =
        degrees * kRadsPerDegree + minutes * kRadsPerMinute + seconds * kRadsPerSecond;
    return isNegative ? -rads : rads;
}

char LatitudeHemisphere(double rads) {
    return rads < 0.0 ? 'S' : 'N';
}

char LongitudeHemisphere(double rads) {
    return rads < 0.0 ? 'W' : 'E';
}

// The values of the frm arguments.
constexpr std::int32_t kFormatDms = 0;
constexpr std::int32_t kFormatNmea = 1;
constexpr std::int32_t kAltitudeSeaLevel = 0;
constexpr std::int32_t kAltitudeEllipsoid = 1;

}  // namespace

// The analysis cannot follow two locks in an order that is known only at run time.
Position::Scope::Scope(Position& position, Position* other)
    KAVREL_THREAD_ANNOTATION(no_thread_safety_analysis)
    : first_(&position), second_(other == &position ? nullptr : other) {
    if (second_ != nullptr && std::less<>()(second_, first_)) std::swap(first_, second_);
    first_->lock_.Acquire();
    if (second_ != nullptr) second_->lock_.Acquire();
}

Position::Scope::~Scope() KAVREL_THREAD_ANNOTATION(no_thread_safety_analysis) {
    if (second_ != nullptr) second_->lock_.Release();
    first_->lock_.Release();
}

ReceiverPositionValues::ReceiverPositionValues(const ReceiverPosition& text)
    : latitude(DmsFromText(text.latitude)),
      longitude(DmsFromText(text.longitude)),
      isSouth(text.latitudeHemisphere.starts_with('S')),
      isWest(text.longitudeHemisphere.starts_with('W')) {
    if (text.altitude.empty()) return;
    altitudeMetres = ReadDouble(text.altitude);
    ellipsoidalHeightMetres = altitudeMetres + ReadDouble(text.geoidalSeparation);
}

Position::Position(const ReceiverPositionValues& received, DatumId datum) {
    GeoCoordinate& c = state_.coordinate;
    state_.isUntouched = false;
    c.datum.id = datum;
    state_.latitude = received.latitude;
    state_.longitude = received.longitude;
    c.latitudeRads = RadsFromDms(received.latitude, received.isSouth);
    c.longitudeRads = RadsFromDms(received.longitude, received.isWest);
    if (NormaliseLongitude(c.longitudeRads) != c.longitudeRads) UpdateLongitudeDms();
    state_.altitudeMetres = received.altitudeMetres;
    c.ellipsoidalHeightMetres = received.ellipsoidalHeightMetres;
}

Position::Position(const GeoPoint& point, double altitudeMetres, double ellipsoidalHeightMetres,
                   DatumId datum) {
    GeoCoordinate& c = state_.coordinate;
    state_.isUntouched = false;
    c.datum.id = datum;
    c.latitudeRads = point.latitudeRads;
    c.longitudeRads = point.longitudeRads;
    c.ellipsoidalHeightMetres = ellipsoidalHeightMetres;
    state_.altitudeMetres = altitudeMetres;
    UpdateLatitudeDms();
    UpdateLongitudeDms();
}

void Position::Begin() {
    error().Clear();
    state_.isUntouched = false;
}

void Position::BeginGeographic() {
    Begin();
    UpdateGeographicSide();
}

bool Position::Report(Failure failure) {
    if (failure) error().Set(kErrorInvalidArgument, *failure);
    return !failure;
}

// When a failure has left both sides unsettled, the grid side wins.
bool Position::UpdateGeographicSide() {
    if (!state_.isGridAuthoritative) return true;
    if (!Report(ProjectInverse(state_.coordinate))) return false;
    UpdateLatitudeDms();
    UpdateLongitudeDms();
    state_.isGridAuthoritative = false;
    state_.isGridStale = false;
    return true;
}

bool Position::UpdateGridSide() {
    if (!state_.isGridStale || state_.isGridAuthoritative) return true;
    if (!Report(ProjectForward(state_.coordinate))) return false;
    state_.isGridStale = false;
    return true;
}

void Position::UpdateLatitudeDms() {
    state_.latitude = DmsOfLatitude(state_.coordinate.latitudeRads);
}

void Position::UpdateLongitudeDms() {
    GeoCoordinate& c = state_.coordinate;
    c.longitudeRads = NormaliseLongitude(c.longitudeRads);
    state_.longitude = DmsOfLongitude(c.longitudeRads);
}

void Position::MarkGeographicWritten() {
    state_.isGridAuthoritative = false;
    state_.isGridStale = true;
    CountChange();
}

void Position::MarkGridWritten() {
    state_.isGridAuthoritative = true;
    state_.isGridStale = false;
    CountChange();
}

void Position::StoreLatitude(double rads) {
    state_.coordinate.latitudeRads = rads;
    UpdateLatitudeDms();
    MarkGeographicWritten();
}

void Position::StoreLongitude(double rads) {
    state_.coordinate.longitudeRads = rads;
    UpdateLongitudeDms();
    MarkGeographicWritten();
}

DmsWithHemisphere Position::LatitudeDMS() {
    const Scope scope(*this);
    BeginGeographic();
    return {state_.latitude, LatitudeHemisphere(state_.coordinate.latitudeRads)};
}

DmsWithHemisphere Position::LongitudeDMS() {
    const Scope scope(*this);
    BeginGeographic();
    return {state_.longitude, LongitudeHemisphere(state_.coordinate.longitudeRads)};
}

// Only the degrees are checked: minutes and seconds may carry the sum anywhere.
void Position::SetLatitudeDMS(double degrees, double minutes, double seconds,
                              std::string_view hemisphere) {
    const Scope scope(*this);
    Begin();
    if (!(degrees >= 0.0 && degrees <= 90.0)) {
        Report(Message::InvalidDegrees);
        return;
    }
    StoreLatitude(RadsFromParts(degrees, minutes, seconds, hemisphere.starts_with('S')));
}

void Position::SetLongitudeDMS(double degrees, double minutes, double seconds,
                               std::string_view hemisphere) {
    const Scope scope(*this);
    Begin();
    StoreLongitude(RadsFromParts(degrees, minutes, seconds, hemisphere.starts_with('W')));
}

std::string Position::TextOf(const Dms& value, char hemisphere, std::int32_t frm,
                             CoordinateLayout nmea) {
    if (frm == kFormatDms) return CoordinateText(CoordinateLayout::Dms, value, hemisphere);
    if (frm == kFormatNmea) return CoordinateText(nmea, value, hemisphere);
    Report(Message::InvalidParameter);
    return {};
}

std::string Position::LatitudeString(std::int32_t frm) {
    const Scope scope(*this);
    BeginGeographic();
    return TextOf(state_.latitude, LatitudeHemisphere(state_.coordinate.latitudeRads), frm,
                  CoordinateLayout::NmeaLatitude);
}

std::string Position::LongitudeString(std::int32_t frm) {
    const Scope scope(*this);
    BeginGeographic();
    return TextOf(state_.longitude, LongitudeHemisphere(state_.coordinate.longitudeRads), frm,
                  CoordinateLayout::NmeaLongitude);
}

double Position::Altitude(std::int32_t frm) {
    const Scope scope(*this);
    BeginGeographic();
    if (frm == kAltitudeSeaLevel) return state_.altitudeMetres;
    if (frm == kAltitudeEllipsoid) return state_.coordinate.ellipsoidalHeightMetres;
    Report(Message::InvalidParameter);
    return 0.0;
}

void Position::SetAltitude(std::int32_t frm, double metres) {
    const Scope scope(*this);
    Begin();
    if (frm == kAltitudeSeaLevel) {
        state_.altitudeMetres = metres;
    } else if (frm == kAltitudeEllipsoid) {
        state_.coordinate.ellipsoidalHeightMetres = metres;
    } else {
        Report(Message::InvalidParameter);
    }
    CountChange();  // also when refused
}

double Position::LatitudeRads() {
    const Scope scope(*this);
    BeginGeographic();
    return state_.coordinate.latitudeRads;
}

double Position::LongitudeRads() {
    const Scope scope(*this);
    BeginGeographic();
    return state_.coordinate.longitudeRads;
}

void Position::PutLatitudeRads(double rads) {
    const Scope scope(*this);
    Begin();
    if (!(rads >= -kHalfPi && rads <= kHalfPi)) {
        Report(Message::InvalidLatitude);
        return;
    }
    StoreLatitude(rads);
}

void Position::PutLongitudeRads(double rads) {
    const Scope scope(*this);
    Begin();
    StoreLongitude(rads);
}

double Position::Latitude() {
    return LatitudeRads() * kDegreesPerRad;
}

double Position::Longitude() {
    return LongitudeRads() * kDegreesPerRad;
}

void Position::PutLatitude(double degrees) {
    PutLatitudeRads(degrees * kRadsPerDegree);
}

void Position::PutLongitude(double degrees) {
    PutLongitudeRads(degrees * kRadsPerDegree);
}

Ref<Position> Position::Copy() {
    const Scope scope(*this);
    error().Clear();
    return Ref<Position>::Adopt(new Position(state_));
}

void Position::CopyAltitudes(Position& from) {
    const Scope scope(*this, &from);
    state_.altitudeMetres = from.state_.altitudeMetres;
    state_.coordinate.ellipsoidalHeightMetres = from.state_.coordinate.ellipsoidalHeightMetres;
}

}  // namespace kavrel
