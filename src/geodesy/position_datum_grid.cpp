// The members of Position that deal with its datum and its grid.

#include <utility>

#include "base/number.h"
#include "geodesy/position.h"
#include "geodesy/zone_rules.h"

namespace kavrel {

std::int16_t Position::Datum() {
    const Scope scope(*this);
    Begin();
    return state_.coordinate.datum.id;
}

// These setters clear the untouched flag only after their work, which depends on it.
void Position::PutDatum(std::int32_t datum) {
    const Scope scope(*this);
    error().Clear();
    ChangeDatum(datum);
    state_.isUntouched = false;
}

void Position::PutCustomDatum(const Ref<CustomDatum>& datum) {
    const Scope scope(*this);
    error().Clear();
    SetCustomDatum(datum);
    state_.isUntouched = false;
}

void Position::ChangeDatum(std::int32_t datum) {
    if (datum < kDatumWgs84 || datum > kDatumCustom) {
        Report(Message::UnknownDatum);
    } else if (datum == kDatumCustom) {
        Report(Message::SetCustomDatumInstead);
    } else if (datum != state_.coordinate.datum.id) {
        ChangeDatumTo({static_cast<DatumId>(datum), nullptr});
    }
}

void Position::SetCustomDatum(const Ref<CustomDatum>& datum) {
    if (!datum) {
        Report(Message::CustomDatumNull);
        return;
    }
    const DatumReference target{kDatumCustom, datum};
    if (!kavrel::IsSameDatum(state_.coordinate.datum, target)) ChangeDatumTo(target);
}

// The point on the ground stays: when the grid side holds it, the geographic side is computed anew
// on the new datum; else it is shifted there. The grid has a datum of its own and does not change.
void Position::ChangeDatumTo(const DatumReference& datum) {
    GeoCoordinate& c = state_.coordinate;
    // The parser can stamp the custom number; the object that comes later says what it meant.
    const bool isStillOpen = c.datum.id == kDatumCustom && !c.datum.custom;
    if (state_.isUntouched || (isStillOpen && datum.custom)) {
        c.datum = datum;
    } else if (state_.isGridAuthoritative) {
        c.datum = datum;
        UpdateGeographicSide();
    } else {
        if (!Report(ShiftToDatum(c, datum))) return;
        UpdateLatitudeDms();
        UpdateLongitudeDms();
    }
    state_.isUntouched = false;
    CountChange();
}

std::int16_t Position::Grid() {
    const Scope scope(*this);
    Begin();
    return state_.coordinate.grid;
}

void Position::PutGrid(std::int32_t grid) {
    const Scope scope(*this);
    error().Clear();
    ChangeGrid(grid);
    state_.isUntouched = false;
}

void Position::PutCustomGrid(const Ref<CustomGrid>& grid) {
    const Scope scope(*this);
    error().Clear();
    SetCustomGrid(grid);
    state_.isUntouched = false;
}

void Position::ChangeGrid(std::int32_t grid) {
    GeoCoordinate& c = state_.coordinate;
    if (grid < kGridNone || grid > kGridCustom) {
        Report(Message::UnknownGrid);
        return;
    }
    if (grid == kGridCustom) {
        Report(Message::SetCustomGridInstead);
        return;
    }
    if (grid == c.grid) return;
    if (!state_.isUntouched) {
        UpdateGeographicSide();
        state_.isGridStale = true;
    }
    c.grid = static_cast<GridId>(grid);
    c.customGrid.Reset();
    c.zone = 0;  // a fixed zone stays
    state_.isUntouched = false;
    CountChange();
}

void Position::SetCustomGrid(const Ref<CustomGrid>& grid) {
    GeoCoordinate& c = state_.coordinate;
    if (!grid) {
        Report(Message::CustomGridNull);
        return;
    }
    if (c.grid == kGridCustom && CustomGrid::AreEqual(*c.customGrid, *grid)) return;
    if (!state_.isUntouched) {
        UpdateGeographicSide();
        state_.isGridStale = true;
    }
    c.grid = kGridCustom;
    c.customGrid = grid;
    state_.isUntouched = false;
    CountChange();
}

double Position::Easting() {
    const Scope scope(*this);
    Begin();
    UpdateGridSide();
    return state_.coordinate.eastingMetres;
}

double Position::Northing() {
    const Scope scope(*this);
    Begin();
    UpdateGridSide();
    return state_.coordinate.northingMetres;
}

void Position::PutEasting(double metres) {
    const Scope scope(*this);
    Begin();
    state_.coordinate.eastingMetres = metres;
    MarkGridWritten();
}

void Position::PutNorthing(double metres) {
    const Scope scope(*this);
    Begin();
    state_.coordinate.northingMetres = metres;
    MarkGridWritten();
}

// The text is rebuilt only for another zone number: a later move within the zone keeps the letter.
std::string Position::Zone() {
    const Scope scope(*this);
    GeoCoordinate& c = state_.coordinate;
    error().Clear();
    if (c.grid != kGridNone) {
        state_.isUntouched = false;
        UpdateGridSide();
    }
    if (c.cachedZone != c.zone) {
        // The letter is read off the latitude, which may still have to come from the grid side.
        if (ZoneRuleOf(c.grid) == ZoneRule::SixDegrees && !UpdateGeographicSide()) return {};
        c.zoneText = ZoneTextOf(c.grid, c.zone, c.latitudeRads);
        c.cachedZone = c.zone;
    }
    return c.zoneText;
}

void Position::PutZone(std::int32_t zone) {
    const Scope scope(*this);
    Begin();
    SetZone(zone);
}

void Position::PutZone(std::string_view zone) {
    PutZone(ReadInteger(zone));
}

void Position::SetZone(std::int32_t zone) {
    GeoCoordinate& c = state_.coordinate;
    state_.isUntouched = false;
    if (zone == c.zone) return;
    c.fixedZone = 0;
    const ZoneRule rule = ZoneRuleOf(c.grid);
    if (rule == ZoneRule::None) return;  // ignored without an error
    if (!IsZoneOf(c.grid, zone)) {
        Report(Message::InvalidZone);
        return;
    }
    const bool isUpToDate = UpdateGeographicSide();
    if (!NeedsZonePut(c.grid)) c.fixedZone = static_cast<std::int16_t>(zone);
    state_.isGridStale = true;
    if (!isUpToDate) return;
    c.zone = static_cast<std::int16_t>(zone);
    CountChange();
}

bool Position::IsSameDatum(Position* other) {
    const Scope scope(*this, other);
    error().Clear();
    return other != nullptr &&
           kavrel::IsSameDatum(state_.coordinate.datum, other->state_.coordinate.datum);
}

bool Position::IsSameGrid(Position* other) {
    const Scope scope(*this, other);
    error().Clear();
    const GeoCoordinate& c = state_.coordinate;
    if (other == nullptr || c.grid == kGridNone) return false;
    const GeoCoordinate& theirs = other->state_.coordinate;
    if (c.grid != theirs.grid) return false;
    if (c.grid == kGridCustom) return CustomGrid::AreEqual(*c.customGrid, *theirs.customGrid);
    const std::int16_t zone = c.zone;  // before the text of `other`, which may be this very object
    return zone == ReadInteger(other->Zone());
}

void Position::MakeSameDatum(Position* other) {
    const Scope scope(*this, other);
    error().Clear();
    if (other == nullptr) return;
    const DatumReference theirs = other->state_.coordinate.datum;
    if (theirs.id == kDatumCustom) {
        SetCustomDatum(theirs.custom);
    } else {
        ChangeDatum(theirs.id);
    }
}

void Position::MakeSameGrid(Position* other) {
    const Scope scope(*this, other);
    error().Clear();
    if (other == nullptr || other->state_.coordinate.grid == kGridNone) return;
    if (other->state_.coordinate.grid == kGridCustom) {
        SetCustomGrid(other->state_.coordinate.customGrid);
        return;
    }
    ChangeGrid(other->state_.coordinate.grid);
    SetZone(ReadInteger(other->Zone()));
}

}  // namespace kavrel
