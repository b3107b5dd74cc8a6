#include "nmea/used_satellites.h"

#include <algorithm>

#include "base/number.h"

namespace kavrel {
namespace {

constexpr std::size_t kFirstPrnField = 3;
constexpr std::int32_t kSystemIdField = 18;

// Behind the DOPs a sentence of a talker for all constellations says which one it is about.
Constellation ConstellationOfGsa(const NmeaSentence& gsa) {
    const Constellation own = ConstellationOf(gsa.TalkerId());
    if (own != Constellation::Any) return own;
    return ConstellationOfSystemId(gsa.FieldOrEmpty(kSystemIdField));
}

}  // namespace

void UsedSatellites::Add(const NmeaSentence& gsa, bool continuesRun) {
    if (!continuesRun) {
        EndRun();
        for (List& list : lists_)
            list.isOfOldRun = true;
    }
    const Constellation constellation = ConstellationOfGsa(gsa);
    MakeRoomFor(constellation);

    List& list = lists_[count_++];
    list.constellation = constellation;
    list.isOfOldRun = false;
    list.size = 0;
    std::array<std::string_view, kFirstPrnField + kPrnsPerSentence> fields;
    gsa.CopyFields(fields);
    for (std::size_t i = kFirstPrnField; i < fields.size(); ++i) {
        const std::int32_t prn = fields[i].empty() ? 0 : ReadInteger(fields[i]);
        if (prn != 0) list.prns[list.size++] = prn;
    }
}

// A sentence replaces what the old run said of its constellation; of the sentences that name none,
// the first.
void UsedSatellites::MakeRoomFor(Constellation constellation) {
    for (std::size_t i = 0; i < count_;) {
        if (!lists_[i].isOfOldRun || lists_[i].constellation != constellation) {
            ++i;
            continue;
        }
        Remove(i);
        if (constellation == Constellation::Any) break;
    }
    if (count_ == kMaxSentences) Remove(0);
}

void UsedSatellites::EndRun() {
    for (std::size_t i = 0; i < count_;) {
        if (lists_[i].isOfOldRun) {
            Remove(i);
        } else {
            ++i;
        }
    }
}

void UsedSatellites::Remove(std::size_t index) {
    std::copy(lists_.begin() + index + 1, lists_.begin() + count_, lists_.begin() + index);
    --count_;
}

bool UsedSatellites::Contains(const SatelliteValues& satellite) const {
    const Constellation own = satellite.constellation;
    for (const List& list : lists()) {
        const bool isMeant = list.constellation == own ||
                             list.constellation == Constellation::Any || own == Constellation::Any;
        if (!isMeant) continue;
        const auto end = list.prns.begin() + list.size;
        if (std::find(list.prns.begin(), end, satellite.prn) != end) return true;
    }
    return false;
}

}  // namespace kavrel
