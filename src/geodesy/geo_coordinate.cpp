#include "geodesy/geo_coordinate.h"

#include <cmath>
#include <utility>

#include "geodesy/angle.h"
#include "geodesy/datum_shift.h"
#include "geodesy/longitude.h"
#include "geodesy/zone_rules.h"
#include "geodesy/zone_table.h"

namespace kavrel {
namespace {

GeodeticPoint GeographicSideOf(const GeoCoordinate& c) {
    return {{c.latitudeRads, c.longitudeRads}, c.ellipsoidalHeightMetres};
}

Failure Shift(const DatumReference& from, const DatumReference& to, GeodeticPoint& point) {
    const std::optional<DatumParameters> source = ParametersOf(from);
    const std::optional<DatumParameters> target = ParametersOf(to);
    if (!source || !target) return Message::UnknownDatum;
    point = ShiftDatum(point, *source, *target);
    return std::nullopt;
}

ProjectionParameters ParametersFrom(const GridRow& row, const Ellipsoid& ellipsoid) {
    ProjectionParameters p;
    p.algorithm = row.algorithm;
    p.ellipsoid = ellipsoid;
    p.falseEastingMetres = row.falseEastingMetres;
    p.falseNorthingMetres = row.falseNorthingMetres;
    p.originLongitudeRads = RadsFromDegrees(row.originLongitudeDegrees);
    p.originLatitudeRads = RadsFromDegrees(row.originLatitudeDegrees);
    p.scaleFactor = row.scaleFactor;
    p.parallel1Rads = RadsFromDegrees(row.parallel1Degrees);
    p.parallel2Rads = RadsFromDegrees(row.parallel2Degrees);
    return p;
}

// The projection and the datum of the grid that a coordinate has chosen. Made in two steps, since
// a zone may depend on the longitude on the grid's datum.
class GridOfCoordinate {
  public:
    explicit GridOfCoordinate(GeoCoordinate& coordinate) : coordinate_(coordinate) {}

    // REQUIRES: for a grid with a zone table, its zone is set.
    Failure FindDatum();
    Failure Prepare(std::int32_t zone);

    const DatumReference& datum() const { return datum_; }
    bool IsOnGridDatum() const { return IsSameDatum(coordinate_.datum, datum_); }
    const Projection& projection() const { return *coordinate_.prepared.projection; }

  private:
    Failure FindCustom();
    Failure PrepareCustom();

    GeoCoordinate& coordinate_;
    DatumReference datum_;
    const ZoneRow* zoneRow_ = nullptr;
    ProjectionParameters custom_;
};

Failure GridOfCoordinate::FindDatum() {
    const GridId grid = coordinate_.grid;
    if (grid == kGridNone) return Message::GridNotSet;
    if (grid < 0 || grid > kGridCustom) return Message::UnknownGrid;
    if (grid == kGridCustom) return FindCustom();

    datum_.id = GridRowOf(grid).datum;
    if (!NeedsZonePut(grid)) return std::nullopt;
    if (coordinate_.zone == 0) return Message::ZoneMissing;
    if (!IsZoneOf(grid, coordinate_.zone)) return Message::InvalidZone;
    if (ZoneRuleOf(grid) == ZoneRule::Table) {
        zoneRow_ = FindZone(grid, coordinate_.zone);
        datum_.id = zoneRow_->datum;
    }
    return std::nullopt;
}

// The codes that a custom grid's ten values can describe.
bool IsCustomAlgorithm(std::int16_t code) {
    return code == 2 || code == 3 || code == 5 || code == 6 || code == 8;
}

Failure GridOfCoordinate::FindCustom() {
    if (!coordinate_.customGrid) return Message::GridNotSet;
    CustomGrid::Definition values = coordinate_.customGrid->Values();
    if (!IsCustomAlgorithm(values.algorithm)) return Message::UnknownGrid;
    const std::optional<DatumParameters> parameters = ParametersOf(values.datum);
    if (!parameters) return Message::UnknownDatum;
    custom_ = values.projection;
    custom_.algorithm = static_cast<Algorithm>(values.algorithm);
    custom_.ellipsoid = parameters->ellipsoid;
    datum_ = std::move(values.datum);
    return std::nullopt;
}

Failure GridOfCoordinate::PrepareCustom() {
    PreparedGrid& prepared = coordinate_.prepared;
    const bool isPrepared = prepared.grid == kGridCustom && prepared.custom == custom_;
    if (!isPrepared) {
        prepared.projection = PrepareProjection(custom_);
        prepared.grid = kGridCustom;
        prepared.custom = custom_;
    }
    return prepared.projection ? Failure() : Message::PositionOutsideGrid;
}

Failure GridOfCoordinate::Prepare(std::int32_t zone) {
    const GridId grid = coordinate_.grid;
    if (grid == kGridCustom) return PrepareCustom();
    PreparedGrid& prepared = coordinate_.prepared;
    if (prepared.grid == grid && prepared.zone == zone) return std::nullopt;

    const Ellipsoid ellipsoid = ParametersOf(datum_)->ellipsoid;
    ProjectionParameters p =
        ParametersFrom(zoneRow_ != nullptr ? GridRowOf(*zoneRow_) : GridRowOf(grid), ellipsoid);
    p.zone = static_cast<std::int16_t>(zone);
    AdjustToZone(grid, zone, p);
    prepared.projection = PrepareProjection(p);
    prepared.grid = grid;
    prepared.zone = p.zone;
    return std::nullopt;
}

}  // namespace

Failure ShiftToDatum(GeoCoordinate& coordinate, const DatumReference& target) {
    if (target.id == coordinate.datum.id && target.id != kDatumCustom) return std::nullopt;
    GeodeticPoint point = GeographicSideOf(coordinate);
    if (const Failure failure = Shift(coordinate.datum, target, point)) return failure;
    coordinate.latitudeRads = point.latitudeRads;
    coordinate.longitudeRads = point.longitudeRads;
    coordinate.ellipsoidalHeightMetres = point.heightMetres;
    coordinate.datum = target;
    return std::nullopt;
}

Failure ProjectForward(GeoCoordinate& coordinate) {
    GridOfCoordinate grid(coordinate);
    if (const Failure failure = grid.FindDatum()) return failure;

    // The shift would fold a latitude beyond the pole, which minutes can make, onto the other side.
    if (!(std::fabs(coordinate.latitudeRads) <= kMaxLatitudeRads)) {
        return Message::PositionOutsideGrid;
    }
    GeodeticPoint point = GeographicSideOf(coordinate);
    if (!grid.IsOnGridDatum()) {
        if (const Failure failure = Shift(coordinate.datum, grid.datum(), point)) return failure;
    }
    const std::int32_t zone = ZoneOfPosition(coordinate, point.longitudeRads);
    if (zone == kZoneOutside) return Message::PositionOutsideGrid;
    if (const Failure failure = grid.Prepare(zone)) return failure;

    PlanePoint plane;
    if (!grid.projection().Forward(point, plane)) return Message::PositionOutsideGrid;
    coordinate.eastingMetres = plane.eastingMetres;
    coordinate.northingMetres = plane.northingMetres;
    coordinate.zone = static_cast<std::int16_t>(zone);
    return std::nullopt;
}

Failure ProjectInverse(GeoCoordinate& coordinate) {
    GridOfCoordinate grid(coordinate);
    if (const Failure failure = grid.FindDatum()) return failure;

    PlanePoint plane{coordinate.eastingMetres, coordinate.northingMetres};
    const std::int32_t zone = ZoneOfPlane(coordinate, plane);
    if (zone == kZoneMissing) return Message::ZoneMissing;
    if (zone == kZoneOutside) return Message::PositionOutsideGrid;
    if (const Failure failure = grid.Prepare(zone)) return failure;

    GeodeticPoint point;
    if (!grid.projection().Inverse(plane, point)) return Message::PositionOutsideGrid;
    if (!grid.IsOnGridDatum()) {
        point.heightMetres = coordinate.ellipsoidalHeightMetres;
        if (const Failure failure = Shift(grid.datum(), coordinate.datum, point)) return failure;
    }
    coordinate.latitudeRads = point.latitudeRads;
    coordinate.longitudeRads = NormaliseLongitude(point.longitudeRads);
    coordinate.zone = static_cast<std::int16_t>(zone);
    return std::nullopt;
}

}  // namespace kavrel
