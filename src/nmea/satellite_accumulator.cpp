#include "nmea/satellite_accumulator.h"

#include <algorithm>

#include "base/number.h"

namespace kavrel {
namespace {

// Fields of a GSV sentence: how many, which one, satellites in view, then four for each satellite
// and, since NMEA 4.1, one for the signal.
constexpr std::int32_t kSentenceCountField = 1;
constexpr std::int32_t kSentenceNumberField = 2;
constexpr std::int32_t kFirstSatelliteField = 4;
constexpr std::int32_t kFieldsPerSatellite = 4;
constexpr std::int32_t kMaxFields = 24;

// What receivers write is up to three digits; anything else takes the long way.
std::int32_t ReadShortInteger(std::string_view text) {
    constexpr std::size_t kShort = 3;
    if (text.size() > kShort) return ReadInteger(text);
    std::int32_t value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') return ReadInteger(text);
        value = value * 10 + (c - '0');
    }
    return value;
}

std::int32_t LastField(const NmeaSentence& gsv) {
    return std::min(gsv.FieldCount(), kMaxFields);
}

// Where a lone field is left over behind the satellites, it is the signal.
char SignalOf(const NmeaSentence& gsv) {
    const std::int32_t last = LastField(gsv);
    const std::int32_t rest = (last - kFirstSatelliteField + 1) % kFieldsPerSatellite;
    if (rest != 1) return '\0';
    const std::string_view signal = gsv.FieldOrEmpty(last);
    return signal.empty() ? '\0' : signal.front();
}

// The satellite with that number, added when there is none; null when there is no room.
SatelliteValues* FindOrAdd(std::vector<SatelliteValues>& satellites, std::int32_t prn) {
    for (SatelliteValues& satellite : satellites) {
        if (satellite.prn == prn) return &satellite;
    }
    if (satellites.size() == SatelliteAccumulator::kMaxSatellitesPerSource) return nullptr;
    satellites.push_back({.prn = prn});
    return &satellites.back();
}

// Adds a satellite that another signal of its talker may have reported already.
void Merge(std::vector<SatelliteValues>& picture, const SatelliteValues& satellite) {
    for (SatelliteValues& known : picture) {
        if (known.prn != satellite.prn || known.talker != satellite.talker) continue;
        known.snrDb = std::max(known.snrDb, satellite.snrDb);
        return;
    }
    picture.push_back(satellite);
}

}  // namespace

bool SatelliteAccumulator::AddGsv(const NmeaSentence& gsv) {
    if (gsv.Type() != SentenceType::Gsv) return false;
    Source& source = SourceFor(gsv.TalkerId(), SignalOf(gsv));
    if (!Gather(source, gsv)) return false;
    Complete(source);
    return true;
}

// Takes in one sentence; true when it was the last of its group.
bool SatelliteAccumulator::Gather(Source& source, const NmeaSentence& gsv) {
    const auto read = [&gsv](std::int32_t field) {
        return ReadShortInteger(gsv.FieldOrEmpty(field));
    };
    const std::int32_t sentenceCount = read(kSentenceCountField);
    const std::int32_t number = read(kSentenceNumberField);
    if (number == 1) {
        source.sentenceCount = sentenceCount;
        source.nextSentence = 1;
        source.gathered.clear();
    }
    if (number != source.nextSentence || sentenceCount != source.sentenceCount ||
        number > sentenceCount) {
        source.sentenceCount = 0;
        return false;
    }
    ++source.nextSentence;

    const std::int32_t lastField = LastField(gsv);
    for (std::int32_t at = kFirstSatelliteField; at < lastField; at += kFieldsPerSatellite) {
        const std::int32_t prn = read(at);
        SatelliteValues* const satellite = prn != 0 ? FindOrAdd(source.gathered, prn) : nullptr;
        if (satellite == nullptr) continue;
        satellite->talker = source.talker;
        satellite->constellation = source.constellation;
        satellite->elevationDegrees = static_cast<std::int16_t>(read(at + 1));
        satellite->azimuthDegrees = static_cast<std::int16_t>(read(at + 2));
        satellite->snrDb = static_cast<std::int16_t>(read(at + 3));
    }
    return number == sentenceCount;
}

void SatelliteAccumulator::Complete(Source& source) {
    isPictureOutdated_ |= source.gathered != source.complete;
    std::swap(source.complete, source.gathered);
    source.previouslyCompletedAt = source.completedAt;
    source.completedAt = ++groupsCompleted_;

    // One leaves at a time: the one that fell silent last held the others until now.
    const auto isSilent = [this](const Source& other) { return IsSilent(other); };
    for (auto at = sources_.begin();
         (at = std::find_if(sources_.begin(), sources_.end(), isSilent)) != sources_.end();) {
        sources_.erase(at);
        isPictureOutdated_ = true;
    }
    const bool hasUseChanged = used_.EndRun();
    if (isPictureOutdated_) BuildPicture();
    if (isPictureOutdated_ || hasUseChanged) MarkUsed();
    isPictureOutdated_ = false;
}

bool SatelliteAccumulator::IsSilent(const Source& source) const {
    if (source.completedAt == groupsCompleted_ || source.completedAt == 0) return false;
    if (groupsCompleted_ - source.completedAt >= kMaxSilentGroups) return true;
    return std::all_of(sources_.begin(), sources_.end(), [&](const Source& other) {
        return &other == &source || other.completedAt == 0 ||
               other.previouslyCompletedAt > source.completedAt;
    });
}

SatelliteAccumulator::Source& SatelliteAccumulator::SourceFor(Talker talker, char signal) {
    for (Source& source : sources_) {
        if (source.talker == talker && source.signal == signal) return source;
    }
    if (sources_.size() == kMaxSources) {
        // So many can only be garbage; the one that was silent for longest gives way.
        sources_.erase(std::min_element(
            sources_.begin(), sources_.end(),
            [](const Source& a, const Source& b) { return a.completedAt < b.completedAt; }));
        isPictureOutdated_ = true;
    }
    Source& source = sources_.emplace_back();
    source.talker = talker;
    source.constellation = ConstellationOf(talker);
    source.signal = signal;
    return source;
}

void SatelliteAccumulator::BuildPicture() {
    picture_.clear();
    for (auto source = sources_.begin(); source != sources_.end(); ++source) {
        const bool isFurtherSignal =
            std::any_of(sources_.begin(), source,
                        [&](const Source& other) { return other.talker == source->talker; });
        if (!isFurtherSignal) {
            picture_.insert(picture_.end(), source->complete.begin(), source->complete.end());
            continue;
        }
        for (const SatelliteValues& satellite : source->complete)
            Merge(picture_, satellite);
    }
}

// Sets the flags; true when one of them changed.
bool SatelliteAccumulator::MarkUsed() {
    bool hasChanged = false;
    for (SatelliteValues& satellite : picture_) {
        const bool isUsed = used_.Contains(satellite);
        hasChanged = hasChanged || isUsed != satellite.isUsedForFix;
        satellite.isUsedForFix = isUsed;
    }
    return hasChanged;
}

bool SatelliteAccumulator::AddGsa(const NmeaSentence& gsa, bool continuesRun) {
    if (gsa.Type() != SentenceType::Gsa) return false;
    return used_.Add(gsa, continuesRun) && MarkUsed();
}

void SatelliteAccumulator::Clear() {
    sources_.clear();
    used_.Clear();
    picture_.clear();
    isPictureOutdated_ = false;
    groupsCompleted_ = 0;
}

}  // namespace kavrel
