#include "geodesy/zone_rules.h"

#include <algorithm>
#include <cmath>

#include "geodesy/angle.h"
#include "geodesy/longitude.h"
#include "geodesy/whole_number.h"
#include "geodesy/zone_table.h"

namespace kavrel {
namespace {

constexpr std::int32_t kLastSixDegreeZone = 60;
constexpr std::int32_t kLastStrip = 10;
constexpr std::int32_t kLastSystem34Zone = 2;
constexpr double kZonePrefixMetres = 1e6;

// Meridian of the zone that the records of the six-degree grids describe.
constexpr std::int32_t kRecordedZone = 31;

std::int32_t SixDegreeZone(double longitudeDegrees) {
    const std::int32_t zone = ToInt32(std::floor((longitudeDegrees + 180.0) / 6.0)) + 1;
    return std::clamp(zone, 1, kLastSixDegreeZone);
}

std::int32_t StripZone(double longitudeDegrees) {
    const std::int32_t zone = ToInt32(std::floor(longitudeDegrees / 3.0 + 0.5));
    return zone >= 1 && zone <= kLastStrip ? zone : kZoneOutside;
}

// The band letter of a six-degree zone: C to X and beyond, without I and O.
char BandLetter(double latitudeRads) {
    const double latitudeDegrees = latitudeRads * kDegreesPerRad;
    int letter = 'C' + ToInt16((latitudeDegrees + 80.0) / 8.0);
    if (letter >= 'I') ++letter;
    if (letter >= 'O') ++letter;
    return static_cast<char>(letter);
}

void AppendDecimal(std::string& text, std::int32_t number) {
    const bool isNegative = number < 0;
    const std::size_t start = text.size();
    do {
        const std::int32_t digit = number % 10;
        text.insert(text.begin() + static_cast<std::ptrdiff_t>(start),
                    static_cast<char>('0' + (isNegative ? -digit : digit)));
        number /= 10;
    } while (number != 0);
    if (isNegative) text.insert(text.begin() + static_cast<std::ptrdiff_t>(start), '-');
}

}  // namespace

bool IsZoneOf(GridId grid, std::int32_t zone) {
    switch (ZoneRuleOf(grid)) {
        case ZoneRule::SixDegrees:
            return zone >= 1 && zone <= kLastSixDegreeZone;
        case ZoneRule::Strips:
            return zone >= 1 && zone <= kLastStrip;
        case ZoneRule::Table:
            return FindZone(grid, zone) != nullptr;
        case ZoneRule::System34:
            return zone >= 1 && zone <= kLastSystem34Zone;
        case ZoneRule::None:
            break;
    }
    return false;
}

bool NeedsZonePut(GridId grid) {
    const ZoneRule rule = ZoneRuleOf(grid);
    return rule == ZoneRule::Table || rule == ZoneRule::System34;
}

std::int32_t ZoneOfPosition(const GeoCoordinate& coordinate, double longitudeRads) {
    const ZoneRule rule = ZoneRuleOf(coordinate.grid);
    if (rule != ZoneRule::SixDegrees && rule != ZoneRule::Strips) return coordinate.zone;
    // A zone fixed on one grid stays with the position, but a strip that does not exist cannot
    // hold.
    if (IsZoneOf(coordinate.grid, coordinate.fixedZone)) return coordinate.fixedZone;
    const double degrees = NormaliseLongitude(longitudeRads) * kDegreesPerRad;
    if (!IsFinite(degrees)) return kZoneOutside;
    return rule == ZoneRule::SixDegrees ? SixDegreeZone(degrees) : StripZone(degrees);
}

std::int32_t ZoneOfPlane(const GeoCoordinate& coordinate, PlanePoint& plane) {
    const ZoneRule rule = ZoneRuleOf(coordinate.grid);
    if (rule != ZoneRule::SixDegrees && rule != ZoneRule::Strips) return coordinate.zone;
    std::int32_t zone = coordinate.zone;
    if (rule == ZoneRule::Strips) {
        const bool hasPrefix = !(plane.eastingMetres < kZonePrefixMetres);
        if (zone == 0 && hasPrefix) {
            zone = ToInt32(std::floor(plane.eastingMetres / kZonePrefixMetres));
            return zone <= kLastStrip ? zone : kZoneOutside;
        }
        if (!hasPrefix) plane.eastingMetres += kZonePrefixMetres * zone;
    }
    return zone != 0 ? zone : kZoneMissing;
}

void AdjustToZone(GridId grid, std::int32_t zone, ProjectionParameters& parameters) {
    const ZoneRule rule = ZoneRuleOf(grid);
    if (rule == ZoneRule::SixDegrees) {
        parameters.originLongitudeRads += RadsFromDegrees(6.0 * (zone - kRecordedZone));
    } else if (rule == ZoneRule::Strips) {
        parameters.originLongitudeRads = RadsFromDegrees(3.0 * zone);
        parameters.falseEastingMetres += kZonePrefixMetres * zone;
    }
}

std::string ZoneTextOf(GridId grid, std::int32_t zone, double latitudeRads) {
    std::string text;
    if (grid == kGridNone) return text;
    const ZoneRule rule = ZoneRuleOf(grid);
    if (rule == ZoneRule::Strips) {
        text.push_back(static_cast<char>('0' + zone));  // zone 10 reads ":"
    } else if (rule == ZoneRule::SixDegrees) {
        AppendDecimal(text, zone);
        text.push_back(BandLetter(latitudeRads));
    } else if (zone != 0) {
        AppendDecimal(text, zone);
    }
    return text;
}

}  // namespace kavrel
