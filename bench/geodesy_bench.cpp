// The geodesy beside PROJ and GeographicLib: the same million points, in one process.
//
// Prints the usual table, then our time over theirs, and how far the transverse Mercator is from
// GeographicLib's exact one in a six-degree zone. Random points with a fixed seed.
//
// PROJ's side of a datum shift is the conversion to geocentric coordinates, the seven parameters
// and the conversion back, in one pipeline. All points are given in radians on both sides.

#include <benchmark/benchmark.h>
#include <proj.h>

#include <GeographicLib/Geodesic.hpp>
#include <GeographicLib/TransverseMercator.hpp>
#include <GeographicLib/TransverseMercatorExact.hpp>
#include <cmath>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "geodesy/angle.h"
#include "geodesy/datum.h"
#include "geodesy/datum_shift.h"
#include "geodesy/position.h"
#include "geodesy/projection.h"

namespace kavrel {
namespace {

constexpr std::size_t kPoints = 1000000;

// One benchmark iteration works on this many points, going round through the million.
constexpr std::size_t kBatch = 1000;

struct Area {
    double west, east, south, north;  // degrees
};
constexpr Area kZone32 = {6.0, 12.0, 0.0, 80.0};
constexpr Area kFrance = {-5.0, 10.0, 41.0, 52.0};
constexpr Area kSweden = {10.0, 25.0, 55.0, 70.0};

std::vector<GeodeticPoint> RandomPoints(const Area& area) {
    std::mt19937_64 random(20240229);
    std::uniform_real_distribution<double> longitude(area.west, area.east);
    std::uniform_real_distribution<double> latitude(area.south, area.north);
    std::uniform_real_distribution<double> height(-100.0, 3000.0);
    std::vector<GeodeticPoint> points(kPoints);
    for (GeodeticPoint& point : points) {
        point.latitudeRads = RadsFromDegrees(latitude(random));
        point.longitudeRads = RadsFromDegrees(longitude(random));
        point.heightMetres = height(random);
    }
    return points;
}

const std::vector<GeodeticPoint>& PointsOf(const Area& area) {
    static std::map<double, std::vector<GeodeticPoint>> made;
    std::vector<GeodeticPoint>& points = made[area.west];
    if (points.empty()) points = RandomPoints(area);
    return points;
}

ProjectionParameters Utm32() {
    return {.algorithm = Algorithm::TransverseMercator,
            .ellipsoid = kEllipsoids[34],
            .falseEastingMetres = 500000.0,
            .originLongitudeRads = RadsFromDegrees(9.0),
            .scaleFactor = 0.9996};
}

ProjectionParameters Lambert93() {
    return {.algorithm = Algorithm::LambertConic,
            .ellipsoid = kEllipsoids[21],
            .falseEastingMetres = 700000.0,
            .falseNorthingMetres = 6600000.0,
            .originLongitudeRads = RadsFromDegrees(3.0),
            .originLatitudeRads = RadsFromDegrees(46.5),
            .scaleFactor = 1.0,
            .parallel1Rads = RadsFromDegrees(44.0),
            .parallel2Rads = RadsFromDegrees(49.0)};
}

constexpr char kUtm32Text[] =
    "+proj=tmerc +lat_0=0 +lon_0=9 +k=0.9996 +x_0=500000 +a=6378137 +es=0.006694379990197";
constexpr char kLambert93Text[] =
    "+proj=lcc +lat_1=44 +lat_2=49 +lat_0=46.5 +lon_0=3 +x_0=700000 +y_0=6600000 "
    "+a=6378137 +es=0.006694380023011";
constexpr char kRt90Text[] =
    "+proj=pipeline +step +proj=cart +a=6377397.155 +es=0.006674372230614 "
    "+step +proj=helmert +convention=position_vector +x=414.1055246174 +y=41.3265500042 "
    "+z=603.0582474221 +rx=-0.85511634 +ry=2.14131697 +rz=-7.02272921 +s=0 "
    "+step +inv +proj=cart +a=6378137 +es=0.006694379990197";

// Feeds points batch by batch to `work(point)`, whose result it keeps from being optimised away.
template <typename Point, typename Work>
void Feed(benchmark::State& state, const std::vector<Point>& points, Work work) {
    std::size_t next = 0;
    for (auto _ : state) {
        for (std::size_t i = 0; i < kBatch; ++i) {
            auto result = work(points[next + i]);
            benchmark::DoNotOptimize(result);
        }
        next = (next + kBatch) % points.size();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kBatch));
}

std::vector<PlanePoint> Projected(const Projection& projection, const Area& area) {
    std::vector<PlanePoint> result;
    result.reserve(kPoints);
    for (const GeodeticPoint& point : PointsOf(area)) {
        PlanePoint plane;
        projection.Forward(point, plane);
        result.push_back(plane);
    }
    return result;
}

void OurForward(benchmark::State& state, const ProjectionParameters& parameters, const Area& area) {
    const auto projection = PrepareProjection(parameters);
    Feed(state, PointsOf(area), [&](const GeodeticPoint& point) {
        PlanePoint plane;
        projection->Forward(point, plane);
        return plane;
    });
}

void OurInverse(benchmark::State& state, const ProjectionParameters& parameters, const Area& area) {
    const auto projection = PrepareProjection(parameters);
    Feed(state, Projected(*projection, area), [&](const PlanePoint& plane) {
        GeoPoint point;
        projection->Inverse(plane, point);
        return point;
    });
}

class ProjPipeline {
  public:
    explicit ProjPipeline(const char* text) : pj_(proj_create(PJ_DEFAULT_CTX, text)) {
        if (pj_ == nullptr) std::fprintf(stderr, "PROJ does not understand %s\n", text);
    }
    ~ProjPipeline() { proj_destroy(pj_); }
    ProjPipeline(const ProjPipeline&) = delete;
    ProjPipeline& operator=(const ProjPipeline&) = delete;

    PJ_COORD operator()(PJ_DIRECTION direction, double x, double y, double z = 0.0) const {
        return proj_trans(pj_, direction, proj_coord(x, y, z, 0.0));
    }

  private:
    PJ* pj_;
};

void ProjForward(benchmark::State& state, const char* text, const Area& area) {
    const ProjPipeline proj(text);
    Feed(state, PointsOf(area), [&](const GeodeticPoint& point) {
        return proj(PJ_FWD, point.longitudeRads, point.latitudeRads);
    });
}

void ProjInverse(benchmark::State& state, const char* text, const ProjectionParameters& parameters,
                 const Area& area) {
    const ProjPipeline proj(text);
    Feed(state, Projected(*PrepareProjection(parameters), area), [&](const PlanePoint& plane) {
        return proj(PJ_INV, plane.eastingMetres, plane.northingMetres);
    });
}

void TmForwardOurs(benchmark::State& state) {
    OurForward(state, Utm32(), kZone32);
}
void TmForwardProj(benchmark::State& state) {
    ProjForward(state, kUtm32Text, kZone32);
}
void TmForwardGeographicLib(benchmark::State& state) {
    const GeographicLib::TransverseMercator tm(6378137.0, 1 / 298.257223563, 0.9996);
    Feed(state, PointsOf(kZone32), [&](const GeodeticPoint& point) {
        double x;
        double y;
        tm.Forward(9.0, point.latitudeRads * kDegreesPerRad, point.longitudeRads * kDegreesPerRad,
                   x, y);
        return x + y;
    });
}
void TmInverseOurs(benchmark::State& state) {
    OurInverse(state, Utm32(), kZone32);
}
void TmInverseProj(benchmark::State& state) {
    ProjInverse(state, kUtm32Text, Utm32(), kZone32);
}
void ConicForwardOurs(benchmark::State& state) {
    OurForward(state, Lambert93(), kFrance);
}
void ConicForwardProj(benchmark::State& state) {
    ProjForward(state, kLambert93Text, kFrance);
}
void ConicInverseOurs(benchmark::State& state) {
    OurInverse(state, Lambert93(), kFrance);
}
void ConicInverseProj(benchmark::State& state) {
    ProjInverse(state, kLambert93Text, Lambert93(), kFrance);
}

void ShiftOurs(benchmark::State& state) {
    const DatumParameters rt90 = *ParametersOf({5, nullptr});
    const DatumParameters wgs84 = *ParametersOf({1, nullptr});
    Feed(state, PointsOf(kSweden),
         [&](const GeodeticPoint& point) { return ShiftDatum(point, rt90, wgs84); });
}
void ShiftProj(benchmark::State& state) {
    const ProjPipeline proj(kRt90Text);
    Feed(state, PointsOf(kSweden), [&](const GeodeticPoint& point) {
        return proj(PJ_FWD, point.longitudeRads, point.latitudeRads, point.heightMetres);
    });
}

// The other libraries measure along the ellipsoid; ours along its sphere, through the position's
// own members and locks.
void DistanceOurs(benchmark::State& state) {
    Position from(GeoPoint{1.0, 0.25}, 0.0, 0.0, 1);
    Position to(GeoPoint{1.0, 0.25}, 0.0, 0.0, 1);
    Feed(state, PointsOf(kSweden), [&](const GeodeticPoint& point) {
        to.PutLatitudeRads(point.latitudeRads);
        to.PutLongitudeRads(point.longitudeRads);
        return from.Distance(&to, 1);
    });
}
void DistanceProj(benchmark::State& state) {
    PJ* pj = proj_create(PJ_DEFAULT_CTX, "+proj=longlat +ellps=WGS84");
    const PJ_COORD from = proj_coord(0.25, 1.0, 0.0, 0.0);
    Feed(state, PointsOf(kSweden), [&](const GeodeticPoint& point) {
        return proj_lp_dist(pj, from, proj_coord(point.longitudeRads, point.latitudeRads, 0, 0));
    });
    proj_destroy(pj);
}
void DistanceGeographicLib(benchmark::State& state) {
    const GeographicLib::Geodesic& geodesic = GeographicLib::Geodesic::WGS84();
    Feed(state, PointsOf(kSweden), [&](const GeodeticPoint& point) {
        double metres;
        geodesic.Inverse(kDegreesPerRad, 0.25 * kDegreesPerRad, point.latitudeRads * kDegreesPerRad,
                         point.longitudeRads * kDegreesPerRad, metres);
        return metres;
    });
}

BENCHMARK(TmForwardOurs);
BENCHMARK(TmForwardProj);
BENCHMARK(TmForwardGeographicLib);
BENCHMARK(TmInverseOurs);
BENCHMARK(TmInverseProj);
BENCHMARK(ConicForwardOurs);
BENCHMARK(ConicForwardProj);
BENCHMARK(ConicInverseOurs);
BENCHMARK(ConicInverseProj);
BENCHMARK(ShiftOurs);
BENCHMARK(ShiftProj);
BENCHMARK(DistanceOurs);
BENCHMARK(DistanceProj);
BENCHMARK(DistanceGeographicLib);

// Keeps the least time of each benchmark besides printing.
class RatioReporter final : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            double& best = nanoseconds_[run.run_name.function_name];
            const double now = run.GetAdjustedCPUTime() / static_cast<double>(kBatch);
            if (best == 0.0 || now < best) best = now;
        }
    }

    void PrintRatios() const {
        for (const char* what :
             {"TmForward", "TmInverse", "ConicForward", "ConicInverse", "Shift", "Distance"}) {
            const std::string name = what;
            PrintRatio(name, "Proj");
            PrintRatio(name, "GeographicLib");
        }
    }

  private:
    void PrintRatio(const std::string& name, const char* other) const {
        const auto ours = nanoseconds_.find(name + "Ours");
        const auto theirs = nanoseconds_.find(name + other);
        if (ours == nanoseconds_.end() || theirs == nanoseconds_.end()) return;
        std::printf("%-14s %6.1f ns, %-13s %6.1f ns: ratio %.2f\n", name.c_str(), ours->second,
                    other, theirs->second, ours->second / theirs->second);
    }

    std::map<std::string, double> nanoseconds_;
};

// Both sides get the ellipsoid of the table. GeographicLib takes a flattening.
void PrintWorstDifference() {
    const ProjectionParameters parameters = Utm32();
    const double e2 = parameters.ellipsoid.e2;
    const double flattening = e2 / (1.0 + std::sqrt(1.0 - e2));
    const GeographicLib::TransverseMercatorExact exact(parameters.ellipsoid.semiMajorAxisMetres,
                                                       flattening, parameters.scaleFactor);
    const auto projection = PrepareProjection(parameters);
    double worst = 0.0;
    for (const GeodeticPoint& point : PointsOf(kZone32)) {
        PlanePoint plane;
        projection->Forward(point, plane);
        double x;
        double y;
        exact.Forward(9.0, point.latitudeRads * kDegreesPerRad,
                      point.longitudeRads * kDegreesPerRad, x, y);
        worst = std::fmax(worst, std::fabs(plane.eastingMetres - 500000.0 - x));
        worst = std::fmax(worst, std::fabs(plane.northingMetres - y));
    }
    std::printf("transverse Mercator against the exact one: at most %.2f nm in %zu points\n",
                worst * 1e9, kPoints);
}

}  // namespace
}  // namespace kavrel

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    kavrel::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintRatios();
    kavrel::PrintWorstDifference();
    return 0;
}
