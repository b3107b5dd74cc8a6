#include "nmea/sentence_generation.h"

#include <cmath>

#include "nmea/sentence_writer.h"

namespace kavrel {
namespace {

constexpr int kDecimals = 2;
constexpr int kCourseDigits = 3;

// By the definition of the knot.
constexpr double kKilometresPerHourPerKnot = 1.852;

std::string_view Status(bool isValid) {
    return isValid ? "A" : "V";
}

void WritePosition(SentenceWriter& writer, const std::optional<GeneratedPosition>& position) {
    if (position.has_value()) {
        writer.Latitude(position->latitudeDegrees).Longitude(position->longitudeDegrees);
    } else {
        writer.Empty().Empty().Empty().Empty();
    }
}

double MagneticCourse(const MovementValues& movement) {
    const double course =
        std::fmod(movement.headingDegrees - movement.magneticVariationDegrees, 360.0);
    // What would be written as 0.00 counts as 0, too.
    constexpr double kHalfLastDigit = 0.005;
    return course < kHalfLastDigit ? course + 360.0 : course;
}

}  // namespace

std::string GenerateRmc(const GeneratedFix& fix, const MovementValues& movement) {
    const double variation = movement.magneticVariationDegrees;
    SentenceWriter writer("GPRMC");
    writer.Text(fix.time).Text(Status(fix.isValid));
    WritePosition(writer, fix.position);
    writer.Number(movement.speedKnots, kDecimals)
        .Number(movement.headingDegrees, kDecimals, kCourseDigits)
        .Text(fix.date)
        .Number(std::fabs(variation), kDecimals, kCourseDigits)
        .Text(variation < 0 ? "W" : "E");
    return writer.Finish();
}

std::string GenerateGll(const GeneratedFix& fix) {
    SentenceWriter writer("GPGLL");
    WritePosition(writer, fix.position);
    writer.Text(fix.time).Text(Status(fix.isValid));
    return writer.Finish();
}

std::string GenerateGga(const GeneratedFix& fix, const GeneratedQuality& quality) {
    SentenceWriter writer("GPGGA");
    writer.Text(fix.time);
    WritePosition(writer, fix.position);
    writer.Text(fix.isValid ? "1" : "0")
        .Number(quality.satellites, 0, 2)
        .Number(quality.hdop, kDecimals);
    if (fix.position.has_value()) {
        writer.Number(fix.position->altitudeMetres, kDecimals)
            .Text("M")
            .Number(fix.position->geoidSeparationMetres, kDecimals)
            .Text("M");
    } else {
        writer.Empty().Text("M").Empty().Text("M");
    }
    writer.Empty().Empty();
    return writer.Finish();
}

std::string GenerateVtg(const MovementValues& movement) {
    SentenceWriter writer("GPVTG");
    writer.Number(movement.headingDegrees, kDecimals, kCourseDigits)
        .Text(movement.isValid ? "T" : "")
        .Number(MagneticCourse(movement), kDecimals, kCourseDigits)
        .Text("M")
        .Number(movement.speedKnots, kDecimals)
        .Text("N")
        .Number(movement.speedKnots * kKilometresPerHourPerKnot, kDecimals)
        .Text("K");
    return writer.Finish();
}

}  // namespace kavrel
