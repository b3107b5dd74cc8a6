#include "nmea/used_satellites.h"

#include <algorithm>

#include "base/number.h"

namespace kavrel {
namespace {

constexpr std::int32_t kFirstPrnField = 3;
constexpr std::int32_t kSystemIdField = 18;

// Each constellation counts its satellites up to here; higher numbers belong to one of them.
constexpr std::int32_t kLastSharedNumber = 64;

// Behind the DOPs a sentence of a talker for all constellations says which one it is about.
Constellation ConstellationOfGsa(const NmeaSentence& gsa) {
    const Constellation own = ConstellationOf(gsa.TalkerId());
    if (own != Constellation::Any) return own;
    return ConstellationOfSystemId(gsa.FieldOrEmpty(kSystemIdField));
}

}  // namespace

void UsedSatellites::Numbers::Add(std::int32_t prn) {
    if (prn > 0 && prn < kSmallLimit) {
        small_[static_cast<std::size_t>(prn) / 64] |= std::uint64_t{1} << (prn % 64);
        return;
    }
    // As many as there are fields fit.
    if (!Contains(prn)) *std::find(large_.begin(), large_.end(), 0) = prn;
}

bool UsedSatellites::Numbers::Contains(std::int32_t prn) const {
    if (prn > 0 && prn < kSmallLimit) {
        return (small_[static_cast<std::size_t>(prn) / 64] >> (prn % 64) & 1) != 0;
    }
    return std::find(large_.begin(), large_.end(), prn) != large_.end();
}

bool UsedSatellites::Add(const NmeaSentence& gsa, bool continuesRun) {
    bool hasChanged = false;
    if (!continuesRun) {
        hasChanged = EndRun();
        for (List& list : std::span(lists_).first(count_))
            list.isOfOldRun = true;
    }
    List list{.constellation = ConstellationOfGsa(gsa), .isOfOldRun = false, .numbers = {}};
    for (std::int32_t i = 0; i < static_cast<std::int32_t>(kPrnsPerSentence); ++i) {
        const std::int32_t prn = ReadInteger(gsa.FieldOrEmpty(kFirstPrnField + i));
        if (prn != 0) list.numbers.Add(prn);
    }
    hasChanged |= MakeRoomFor(list);
    lists_[count_++] = list;
    return hasChanged;
}

// A sentence replaces what the old run said of its constellation; of the sentences that name none,
// the first. Returns whether it says something else.
bool UsedSatellites::MakeRoomFor(const List& list) {
    bool isKnown = false;
    bool hasChanged = false;
    for (std::size_t i = 0; i < count_;) {
        if (!lists_[i].isOfOldRun || lists_[i].constellation != list.constellation) {
            ++i;
            continue;
        }
        const bool isSame = lists_[i].numbers == list.numbers;
        isKnown |= isSame;
        hasChanged |= !isSame;
        Remove(i);
        if (list.constellation == Constellation::Any) break;
    }
    if (count_ == kMaxSentences) {
        Remove(0);
        hasChanged = true;
    }
    return hasChanged || !isKnown;
}

bool UsedSatellites::EndRun() {
    const std::size_t before = count_;
    for (std::size_t i = 0; i < count_;) {
        if (lists_[i].isOfOldRun) {
            Remove(i);
        } else {
            ++i;
        }
    }
    return count_ != before;
}

void UsedSatellites::Remove(std::size_t index) {
    std::copy(lists_.begin() + index + 1, lists_.begin() + count_, lists_.begin() + index);
    --count_;
}

bool UsedSatellites::Contains(const SatelliteValues& satellite) const {
    const Constellation own = satellite.constellation;
    for (const List& list : lists()) {
        const bool isMeant = satellite.prn > kLastSharedNumber || list.constellation == own ||
                             list.constellation == Constellation::Any || own == Constellation::Any;
        if (isMeant && list.numbers.Contains(satellite.prn)) return true;
    }
    return false;
}

}  // namespace kavrel
