#include "nmea/used_satellites.h"

#include <algorithm>

#include "base/number.h"

namespace kavrel {
namespace {

constexpr std::int32_t kFirstPrnField = 3;
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
    for (std::size_t i = 0; i < kPrnsPerSentence; ++i) {
        const auto number = static_cast<std::int32_t>(kFirstPrnField + i);
        const std::int32_t prn = ReadInteger(gsa.FieldOrEmpty(number));
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
    const Constellation own = ConstellationOf(satellite.talker);
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
