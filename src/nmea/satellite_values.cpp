#include "nmea/satellite_values.h"

#include "base/number.h"

namespace kavrel {
namespace {

struct Entry {
    Talker talker;
    Constellation constellation;
};

// BeiDou and QZSS had other letters before NMEA 4.11 settled them.
constexpr Entry kTalkers[] = {
    {{'G', 'P'}, Constellation::Gps},     {{'G', 'L'}, Constellation::Glonass},
    {{'G', 'A'}, Constellation::Galileo}, {{'G', 'B'}, Constellation::BeiDou},
    {{'B', 'D'}, Constellation::BeiDou},  {{'G', 'Q'}, Constellation::Qzss},
    {{'Q', 'Z'}, Constellation::Qzss},    {{'G', 'I'}, Constellation::NavIc},
};

}  // namespace

Constellation ConstellationOf(Talker talker) {
    for (const Entry& entry : kTalkers) {
        if (entry.talker == talker) return entry.constellation;
    }
    return Constellation::Any;
}

Constellation ConstellationOfSystemId(std::string_view systemId) {
    // The enumeration follows the ids 1 to 6.
    const std::int32_t id = ReadInteger(systemId);
    constexpr auto kLast = static_cast<std::int32_t>(Constellation::NavIc);
    return id >= 1 && id <= kLast ? static_cast<Constellation>(id) : Constellation::Any;
}

}  // namespace kavrel
