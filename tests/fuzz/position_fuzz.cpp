// Three positions that share custom datums and grids, with any numbers whatever in all of them.
//
// Every call must end. Where the ground is known (a built-in datum and grid, or a grid that cannot
// be computed), results are finite or an error says why not, and texts and parts of angles stay in
// their ranges.
#include <array>
#include <cmath>
#include <cstdint>
#include <string>

#include "fuzz/fuzz.h"
#include "geodesy/angle.h"
#include "geodesy/coordinate_text.h"
#include "geodesy/position.h"

namespace kavrel {
namespace {

class Atlas {
  public:
    explicit Atlas(Input input) : input_(input) {}

    void Run() {
        while (!input_.IsAtEnd())
            Step();
    }

  private:
    void Step() {
        const Ref<Position> p = TakePosition();
        const std::uint32_t countBefore = p->ModifiedCount();
        const char operation = input_.Take<char>();
        Do(operation, *p);
        const bool isOneChange = operation != 'P' && operation != 'R';
        Check(!isOneChange || p->ModifiedCount() - countBefore <= 3);
    }

    // Letters, so that seeds can be written by hand.
    void Do(char operation, Position& p) {
        switch (operation) {
            case 'A':
                return PutAngles(p);
            case 'B':
                p.SetLatitudeDMS(TakeNumber(), TakeNumber(), TakeNumber(), input_.TakeText(2));
                p.SetLongitudeDMS(TakeNumber(), TakeNumber(), TakeNumber(), input_.TakeText(2));
                return;
            case 'H':
                return p.SetAltitude(input_.Take<std::int8_t>(), TakeNumber());
            case 'D':
                return PutDatum(p, input_.Take<std::int8_t>());
            case 'G':
                return PutGrid(p, input_.Take<std::int8_t>());
            case 'Z':
                return p.PutZone(input_.Take<std::int16_t>());
            case 'z':
                return p.PutZone(input_.TakeText(8));
            case 'E':
                return p.PutEasting(TakeNumber());
            case 'N':
                return p.PutNorthing(TakeNumber());
            case 'd':
                return p.PutCustomDatum(TakeCustomDatum());
            case 'g':
                return p.PutCustomGrid(TakeCustomGrid());
            case 'x':
                return ChangeDatum(*TakeCustomDatum());
            case 'y':
                return ChangeGrid(*TakeCustomGrid());
            case 'M':
                return p.Move(TakeNumber(), TakeNumber(), input_.Take<std::int8_t>());
            case 'R':
                return Relate(p, *TakePosition(), input_.Take<std::int8_t>());
            case 'S':
                return p.MakeSameDatum(TakePosition().get());
            case 's':
                return p.MakeSameGrid(TakePosition().get());
            case 'C':
                positions_[1] = p.Copy();
                return;
            case 'T':
                positions_[0] = FromText();
                return;
            case 'P':
                return ProjectThereAndBack(p);
            default:
                return Read(p);
        }
    }

    // Half of the numbers are plain ones, which get farther.
    double TakeNumber() {
        const auto choice = input_.Take<std::uint8_t>();
        if (choice < 64) return input_.Take<double>();
        if (choice < 128) return input_.Take<std::int32_t>() / 16.0;
        if (choice < 192) return input_.Take<std::int16_t>() / 10000.0;
        return input_.Take<std::int8_t>();
    }

    Ref<Position> TakePosition() { return positions_[input_.TakeBelow(positions_.size())]; }
    Ref<CustomDatum> TakeCustomDatum() {
        return customDatums_[input_.TakeBelow(customDatums_.size())];
    }
    Ref<CustomGrid> TakeCustomGrid() { return customGrids_[input_.TakeBelow(customGrids_.size())]; }

    void ChangeDatum(CustomDatum& datum) {
        using Put = void (CustomDatum::*)(double);
        static constexpr std::array<Put, 9> kPuts = {
            &CustomDatum::PutSemiMajorAxis, &CustomDatum::PutE2,     &CustomDatum::PutDeltaX,
            &CustomDatum::PutDeltaY,        &CustomDatum::PutDeltaZ, &CustomDatum::PutRotX,
            &CustomDatum::PutRotY,          &CustomDatum::PutRotZ,   &CustomDatum::PutScaleFactor};
        (datum.*kPuts[input_.TakeBelow(kPuts.size())])(TakeNumber());
    }

    void ChangeGrid(CustomGrid& grid) {
        using Put = void (CustomGrid::*)(double);
        static constexpr std::array<Put, 7> kPuts = {
            &CustomGrid::PutFalseEasting,      &CustomGrid::PutFalseNorthing,
            &CustomGrid::PutLongitudeOfOrigin, &CustomGrid::PutLatitudeOfOrigin,
            &CustomGrid::PutScaleFactor,       &CustomGrid::PutLatitudeSP1,
            &CustomGrid::PutLatitudeSP2};
        const std::size_t choice = input_.TakeBelow(kPuts.size() + 3);
        if (choice < kPuts.size()) return (grid.*kPuts[choice])(TakeNumber());
        if (choice == kPuts.size()) return grid.PutDatum(input_.Take<std::int8_t>());
        if (choice == kPuts.size() + 1) return grid.PutAlgorithm(input_.Take<std::int8_t>());
        grid.PutCustomDatum(TakeCustomDatum());
    }

    void PutAngles(Position& p) {
        const double latitude = TakeNumber();
        p.PutLatitudeRads(latitude);
        Check(p.error().IsSet() == !(std::fabs(latitude) <= kHalfPi));
        const double longitude = TakeNumber();
        p.PutLongitudeRads(longitude);
        if (!(std::fabs(latitude) <= kHalfPi) || !(std::fabs(longitude) < 1e6)) return;
        Check(p.LatitudeRads() == latitude && !p.error().IsSet());
        Check(std::fabs(p.LongitudeRads()) <= kPi);
        CheckParts(p.LatitudeDMS(), 90);
        CheckParts(p.LongitudeDMS(), 180);
    }

    static void CheckParts(const DmsWithHemisphere& parts, int maxDegrees) {
        Check(parts.degrees >= 0 && parts.degrees <= maxDegrees);
        Check(parts.minutes >= 0 && parts.minutes < 60);
        Check(parts.seconds >= 0.0 && parts.seconds < 60.0);
    }

    // Also refused when the position's own datum is a custom one that it does not have.
    static void PutDatum(Position& p, std::int8_t datum) {
        p.PutDatum(datum);
        const bool isRefused = p.error().IsSet();
        if (datum < 1 || datum > 27) Check(isRefused);
        Check(isRefused || p.Datum() == datum);
    }

    static void PutGrid(Position& p, std::int8_t grid) {
        p.PutGrid(grid);
        if (grid < 0 || grid > 51) Check(p.error().IsSet());
    }

    // From a point on the ground to a built-in grid and back.
    void ProjectThereAndBack(Position& p) {
        const double latitude = input_.Take<std::int16_t>() / 20861.0;  // to the poles
        const double longitude = input_.Take<std::int16_t>() / 10430.0;
        p.PutDatum(1 + input_.Take<std::uint8_t>() % 27);
        p.PutGrid(1 + input_.Take<std::uint8_t>() % 51);
        p.PutZone(input_.Take<std::int16_t>());
        p.SetAltitude(1, 0.0);
        p.PutLatitudeRads(latitude);
        p.PutLongitudeRads(longitude);
        const double easting = p.Easting();
        if (p.error().IsSet()) return;
        const double northing = p.Northing();
        Check(std::isfinite(easting) && std::isfinite(northing) && !p.error().IsSet());

        p.PutEasting(easting);
        p.PutNorthing(northing);
        const double back = p.LatitudeRads();
        if (p.error().IsSet()) return;
        Check(std::isfinite(back) && std::isfinite(p.LongitudeRads()));
    }

    static void Relate(Position& a, Position& b, std::int32_t method) {
        const double distance = a.Distance(&b, method);
        const bool hasDistance = !a.error().IsSet();
        Check(!(distance < 0.0) && (hasDistance || distance == 0.0));
        const double bearing = a.Bearing(&b, method);
        Check(!(bearing < 0.0) && !(bearing >= 360.0));
        if (method < 1 || method > 3) Check(!hasDistance && a.error().IsSet());
        a.IsSameDatum(&b);
        a.IsSameGrid(&b);

        // Between points on the ground the great circle has a length, at most half way round.
        const bool isGround = std::fabs(a.LatitudeRads()) <= kHalfPi &&
                              std::fabs(b.LatitudeRads()) <= kHalfPi &&
                              std::fabs(a.LongitudeRads()) <= kPi &&
                              std::fabs(b.LongitudeRads()) <= kPi && a.IsSameDatum(&b);
        if (method == 2 && hasDistance && isGround) Check(distance <= kPi);
    }

    Ref<Position> FromText() {
        const std::string latitude = input_.TakeText(20);
        const std::string longitude = input_.TakeText(20);
        const std::string hemispheres = input_.TakeText(2);
        const std::string altitude = input_.TakeText(20);
        const std::string_view view = hemispheres;
        return MakeRef<Position>(
            ReceiverPosition{.latitude = latitude,
                             .longitude = longitude,
                             .latitudeHemisphere = view.substr(0, 1),
                             .longitudeHemisphere = view.substr(view.empty() ? 0 : 1),
                             .altitude = altitude,
                             .geoidalSeparation = input_.TakeText(10)},
            static_cast<DatumId>(1 + input_.Take<std::uint8_t>() % 28));
    }

    void Read(Position& p) {
        for (const std::int32_t frm : {0, 1, 2}) {
            Check(p.LatitudeString(frm).size() <= kMaxCoordinateText);
            Check(p.LongitudeString(frm).size() <= kMaxCoordinateText);
            p.Altitude(frm);
            Check(frm != 2 || p.error().IsSet());
        }
        p.LatitudeDMS();
        p.LongitudeDMS();
        p.Easting();
        p.Northing();
        Check(p.Zone().size() < 16);
        Check(p.Datum() >= 1 && p.Datum() <= 28);
        Check(p.Grid() >= 0 && p.Grid() <= 52);
    }

    Input input_;
    std::array<Ref<Position>, 3> positions_ = {MakeRef<Position>(), MakeRef<Position>(),
                                               MakeRef<Position>()};
    std::array<Ref<CustomDatum>, 2> customDatums_ = {MakeRef<CustomDatum>(),
                                                     MakeRef<CustomDatum>()};
    std::array<Ref<CustomGrid>, 2> customGrids_ = {MakeRef<CustomGrid>(), MakeRef<CustomGrid>()};
};

}  // namespace
}  // namespace kavrel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return kavrel::RunSession<kavrel::Atlas>(data, size);
}
