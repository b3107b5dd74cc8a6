#include "options.h"

#include <charconv>
#include <cstdlib>

namespace simulator {

const std::string_view kUsage =
    "receiver_simulator [options]: writes what a receiver on a course over ground would say\n"
    "  --rate <1..10>          fixes a second; default 1\n"
    "  --count <n>             how many fixes; default 60\n"
    "  --seconds <n>           the same as a duration\n"
    "  --bytes <n>             as many fixes as it takes to write n bytes\n"
    "  --start <hh:mm:ss>      on 1 June 2026; default 12:00:00; 23:59:30 crosses midnight\n"
    "  --seed <n>              another sky, another course, other faults; default 1\n"
    "  --constellations <1..4> GPS, GLONASS, Galileo, BeiDou; default 1\n"
    "  --nmea41                signal ids in GSV, system ids in GSA\n"
    "  --lost-fix <share>      0..1 of the fixes are lost, in runs\n"
    "  --bad-checksum <share>  0..1 of the sentences have a wrong checksum\n"
    "  --half <share>          0..1 of the sentences break off\n"
    "  --output <file>         instead of the standard output\n";

namespace {

template <typename T>
bool ReadNumber(std::string_view text, T first, T last, T& value) {
    T number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return false;
    if (!(number >= first && number <= last)) return false;
    value = number;
    return true;
}

bool ReadTime(std::string_view text, std::int64_t& seconds) {
    std::int64_t hour = 0;
    std::int64_t minute = 0;
    std::int64_t second = 0;
    if (text.size() != 8 || text[2] != ':' || text[5] != ':') return false;
    if (!ReadNumber<std::int64_t>(text.substr(0, 2), 0, 23, hour)) return false;
    if (!ReadNumber<std::int64_t>(text.substr(3, 2), 0, 59, minute)) return false;
    if (!ReadNumber<std::int64_t>(text.substr(6, 2), 0, 59, second)) return false;
    seconds = (hour * 60 + minute) * 60 + second;
    return true;
}

constexpr std::int64_t kMaxEpochs = 1'000'000'000;

// True when the option is known and its value is good.
bool ReadOption(Options& options, std::string_view name, std::string_view value,
                std::int64_t& seconds) {
    if (name == "--rate") return ReadNumber(value, 1, 10, options.rateHz);
    if (name == "--count") return ReadNumber<std::int64_t>(value, 0, kMaxEpochs, options.epochs);
    if (name == "--seconds") return ReadNumber<std::int64_t>(value, 0, kMaxEpochs / 10, seconds);
    if (name == "--bytes") return ReadNumber<std::uint64_t>(value, 1, 1ull << 40, options.bytes);
    if (name == "--start") return ReadTime(value, options.startSeconds);
    if (name == "--seed") return ReadNumber<std::uint32_t>(value, 0, ~0u, options.seed);
    if (name == "--constellations") return ReadNumber(value, 1, 4, options.constellations);
    if (name == "--lost-fix") return ReadNumber(value, 0.0, 1.0, options.lostFixShare);
    if (name == "--bad-checksum") return ReadNumber(value, 0.0, 1.0, options.badChecksumShare);
    if (name == "--half") return ReadNumber(value, 0.0, 1.0, options.halfSentenceShare);
    if (name == "--output") {
        options.output = value;
        return !value.empty();
    }
    return false;
}

}  // namespace

std::optional<Options> ReadOptions(int count, char** arguments, std::string& complaint) {
    Options options;
    std::int64_t seconds = -1;
    for (int i = 1; i < count; ++i) {
        const std::string_view name = arguments[i];
        if (name == "--nmea41") {
            options.hasSignalIds = true;
            continue;
        }
        const std::string_view value = i + 1 < count ? arguments[++i] : std::string_view();
        if (!ReadOption(options, name, value, seconds)) {
            complaint = std::string(name) + " " + std::string(value);
            return std::nullopt;
        }
    }
    if (seconds >= 0) options.epochs = seconds * options.rateHz;
    return options;
}

}  // namespace simulator
