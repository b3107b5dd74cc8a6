// Geodetic datums by number.
#pragma once

#include <cstdint>
#include <optional>

#include "base/record.h"
#include "geodesy/custom_datum.h"
#include "geodesy/datum_parameters.h"

namespace kavrel {

// 1..27 built in, 28 custom. 0 is not a datum.
using DatumId = std::int16_t;
inline constexpr DatumId kDatumWgs84 = 1;
inline constexpr DatumId kDatumLastBuiltIn = 27;
inline constexpr DatumId kDatumCustom = 28;

// A datum by number, with the object that describes it when the number is kDatumCustom.
struct DatumReference {
    DatumId id = kDatumWgs84;
    Ref<CustomDatum> custom;
};

// The values of a datum; nothing for a number outside 1..28 and for 28 without an object.
std::optional<DatumParameters> ParametersOf(const DatumReference& datum);

// Equal numbers, or two custom datums with equal values.
bool IsSameDatum(const DatumReference& a, const DatumReference& b);

}  // namespace kavrel
