#include "receiver.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "nmea/sentence_writer.h"

namespace simulator {

using kavrel::SentenceWriter;

namespace {

constexpr double kRadsPerDegree = 3.14159265358979323846 / 180;
constexpr double kDegreesPerKnotSecond = 1.0 / (60 * 3600);  // a knot is a minute an hour
constexpr std::int64_t kSecondsPerDay = 86400;
constexpr std::int64_t kEpochsPerSky = 60;
constexpr std::size_t kSatellitesPerGsv = 4;
constexpr std::size_t kSatellitesPerGsa = 12;

std::string TwoDigits(std::int64_t value) {
    return {static_cast<char>('0' + value / 10 % 10), static_cast<char>('0' + value % 10)};
}

// hhmmss.ss
std::string TimeText(std::int64_t second, std::int64_t hundredths) {
    return TwoDigits(second / 3600 % 24) + TwoDigits(second / 60 % 60) + TwoDigits(second % 60) +
           "." + TwoDigits(hundredths);
}

}  // namespace

std::string Receiver::NextEpoch() {
    if (options_.lostFixShare > 0 && epoch_ >= lostUntil_ && Chance() < options_.lostFixShare / 5) {
        lostUntil_ = epoch_ + 5;
    }
    const bool hasFix = epoch_ >= lostUntil_;
    Move();

    std::string text;
    AppendFixSentences(text, hasFix);
    const double skySeconds = static_cast<double>(epoch_ / kEpochsPerSky * kEpochsPerSky);
    const auto sky = SkyAt(skySeconds / options_.rateHz, options_.constellations, options_.seed);
    for (const auto& constellation : sky)
        AppendGsa(text, constellation, hasFix);
    for (const auto& constellation : sky)
        AppendGsv(text, constellation);
    ++epoch_;
    return text;
}

// A slow turn with some unrest.
void Receiver::Move() {
    const double seconds = 1.0 / options_.rateHz;
    movement_.headingDegrees = std::fmod(movement_.headingDegrees + 2 * seconds * Chance(), 360.0);
    movement_.speedKnots = std::clamp(movement_.speedKnots + seconds * (Chance() - 0.5), 0.0, 60.0);
    const double distanceDegrees = movement_.speedKnots * kDegreesPerKnotSecond * seconds;
    const double heading = movement_.headingDegrees * kRadsPerDegree;
    position_.latitudeDegrees += distanceDegrees * std::cos(heading);
    position_.longitudeDegrees +=
        distanceDegrees * std::sin(heading) / std::cos(position_.latitudeDegrees * kRadsPerDegree);
    position_.altitudeMetres += seconds * (Chance() - 0.5);
}

void Receiver::AppendFixSentences(std::string& text, bool hasFix) {
    const std::int64_t second = options_.startSeconds + epoch_ / options_.rateHz;
    const std::string time = TimeText(second, epoch_ % options_.rateHz * 100 / options_.rateHz);
    const std::string date = TwoDigits(1 + second / kSecondsPerDay % 28) + "0626";
    kavrel::GeneratedFix fix{.time = time, .date = date, .isValid = hasFix, .position = {}};
    if (hasFix) fix.position = position_;

    Append(text, kavrel::GenerateGga(fix, {.satellites = hasFix ? std::int16_t{8} : std::int16_t{0},
                                           .hdop = hasFix ? 1.1 : 99.99}));
    Append(text, kavrel::GenerateRmc(fix, hasFix ? movement_ : kavrel::MovementValues()));
    Append(text, kavrel::GenerateGll(fix));
    Append(text, kavrel::GenerateVtg(hasFix ? movement_ : kavrel::MovementValues()));
}

void Receiver::AppendGsa(std::string& text, const SimulatedConstellation& constellation,
                         bool hasFix) {
    SentenceWriter writer(options_.constellations > 1 ? "GNGSA" : "GPGSA");
    writer.Text("A").Text(hasFix ? "3" : "1");
    std::size_t listed = 0;
    for (const SimulatedSatellite& satellite : constellation.satellites) {
        if (!hasFix || satellite.snrDb == 0 || listed == kSatellitesPerGsa) continue;
        writer.Number(satellite.prn, 0, 2);
        ++listed;
    }
    for (; listed < kSatellitesPerGsa; ++listed)
        writer.Empty();
    writer.Number(hasFix ? 1.9 : 99.99, 2).Number(hasFix ? 1.1 : 99.99, 2);
    writer.Number(hasFix ? 1.6 : 99.99, 2);
    if (options_.hasSignalIds) writer.Number(constellation.systemId, 0);
    Append(text, writer.Finish());
}

void Receiver::AppendGsv(std::string& text, const SimulatedConstellation& constellation) {
    const auto& satellites = constellation.satellites;
    const std::size_t sentences = (satellites.size() + kSatellitesPerGsv - 1) / kSatellitesPerGsv;
    for (std::size_t i = 0; i < sentences; ++i) {
        SentenceWriter writer(std::string(constellation.talker) + "GSV");
        writer.Number(static_cast<double>(sentences), 0).Number(static_cast<double>(i + 1), 0);
        writer.Number(static_cast<double>(satellites.size()), 0, 2);
        const std::size_t end = std::min(satellites.size(), (i + 1) * kSatellitesPerGsv);
        for (std::size_t j = i * kSatellitesPerGsv; j < end; ++j) {
            writer.Number(satellites[j].prn, 0, 2)
                .Number(satellites[j].elevationDegrees, 0, 2)
                .Number(satellites[j].azimuthDegrees, 0, 3);
            if (satellites[j].snrDb != 0) {
                writer.Number(satellites[j].snrDb, 0, 2);
            } else {
                writer.Empty();
            }
        }
        if (options_.hasSignalIds) writer.Text("1");
        Append(text, writer.Finish());
    }
}

void Receiver::Append(std::string& text, std::string sentence) {
    if (options_.badChecksumShare > 0 && Chance() < options_.badChecksumShare) {
        sentence.back() = sentence.back() == '0' ? '1' : '0';
    }
    if (options_.halfSentenceShare > 0 && Chance() < options_.halfSentenceShare) {
        text += sentence.substr(0, sentence.size() / 2);
        return;
    }
    text += sentence + "\r\n";
}

}  // namespace simulator
