// Position: the geographic point of the library.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/record.h"
#include "geodesy/coordinate_text.h"
#include "geodesy/dms.h"
#include "geodesy/geo_coordinate.h"
#include "platform/lock.h"

namespace kavrel {

// A position as a receiver's sentence gives it. Any text may be empty.
struct ReceiverPosition {
    std::string_view latitude;             // ddmm.mmmm
    std::string_view longitude;            // dddmm.mmmm
    std::string_view latitudeHemisphere;   // S makes it negative
    std::string_view longitudeHemisphere;  // W makes it negative
    std::string_view altitude;             // metres above mean sea level
    std::string_view geoidalSeparation;    // metres
};

// The numbers of these texts, as they stand there. All 0 without texts.
struct ReceiverPositionValues {
    Dms latitude;
    Dms longitude;
    bool isSouth = false;
    bool isWest = false;
    double altitudeMetres = 0.0;           // above mean sea level
    double ellipsoidalHeightMetres = 0.0;  // the geoidal separation more; 0 for an empty altitude

    ReceiverPositionValues() = default;
    explicit ReceiverPositionValues(const ReceiverPosition& text);
};

struct DmsWithHemisphere : Dms {
    char hemisphere = 'N';
};

// Latitude and longitude on a datum, two independent altitudes, and coordinates in a grid. Both
// sides are kept; the one written last is authoritative, and the other is computed when read.
//
// Members are named as at the automation interface, `Put...` being its property puts. Each clears
// the error slot first and reports a failure there, with its code and message; getters then give
// what is stored, texts and computed results are empty or 0.
//
// Thread safety: every member may be called from any thread. Each runs under the position's own
// recursive lock, except ModifiedCount. Members that take a second position hold both locks from
// the start, in an order that all threads share. A caller that wants to read the error slot of its
// own call holds a Position::Scope, with the same second position, around both.
class Position final : public Record {
  public:
    // Holds the locks of a position, and of another where there is one.
    class Scope {
      public:
        explicit Scope(Position& position, Position* other = nullptr);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

      private:
        Position* first_;
        Position* second_;  // null when there is none
    };

    // Untouched: on datum 1, everything 0.
    Position() = default;
    Position(const ReceiverPositionValues& received, DatumId datum);
    Position(const ReceiverPosition& text, DatumId datum)
        : Position(ReceiverPositionValues(text), datum) {}
    Position(const GeoPoint& point, double altitudeMetres, double ellipsoidalHeightMetres,
             DatumId datum);

    DmsWithHemisphere LatitudeDMS();
    DmsWithHemisphere LongitudeDMS();
    void SetLatitudeDMS(double degrees, double minutes, double seconds,
                        std::string_view hemisphere);
    void SetLongitudeDMS(double degrees, double minutes, double seconds,
                         std::string_view hemisphere);

    // 0: degrees, minutes, seconds and hemisphere; 1: as in NMEA sentences, without hemisphere.
    std::string LatitudeString(std::int32_t frm);
    std::string LongitudeString(std::int32_t frm);

    // 0: above mean sea level; 1: above the ellipsoid. Setting one leaves the other.
    double Altitude(std::int32_t frm);
    void SetAltitude(std::int32_t frm, double metres);

    double LatitudeRads();
    double LongitudeRads();
    void PutLatitudeRads(double rads);
    void PutLongitudeRads(double rads);
    double Latitude();
    double Longitude();
    void PutLatitude(double degrees);
    void PutLongitude(double degrees);

    std::int16_t Datum();
    void PutDatum(std::int32_t datum);
    void PutCustomDatum(const Ref<CustomDatum>& datum);

    std::int16_t Grid();
    void PutGrid(std::int32_t grid);
    void PutCustomGrid(const Ref<CustomGrid>& grid);
    double Easting();
    double Northing();
    void PutEasting(double metres);
    void PutNorthing(double metres);
    std::string Zone();
    void PutZone(std::int32_t zone);
    void PutZone(std::string_view zone);  // its leading integer

    // Methods: 1 great circle in metres, 2 great circle in radians, 3 straight line in the grid.
    double Distance(Position* other, std::int32_t method);
    double Bearing(Position* other, std::int32_t method);  // degrees
    void Move(double distance, double bearingDegrees, std::int32_t method);

    // Shares the custom datum and custom grid. The copy's modified count is 0.
    Ref<Position> Copy();

    // Takes no lock and changes nothing, not even the error slot.
    std::uint32_t ModifiedCount() const { return modifiedCount_.load(std::memory_order_relaxed); }

    bool IsSameDatum(Position* other);
    bool IsSameGrid(Position* other);
    void MakeSameDatum(Position* other);
    void MakeSameGrid(Position* other);

    // Takes over both altitudes; not a change that the modified count counts.
    void CopyAltitudes(Position& from);

  private:
    struct State {
        GeoCoordinate coordinate;
        double altitudeMetres = 0.0;
        Dms latitude;
        Dms longitude;
        bool isGridAuthoritative = false;  // grid side written last
        bool isGridStale = false;          // geographic side written last
        bool isUntouched = true;           // until then, datums are only renamed
    };

    explicit Position(const State& state) : state_(state) {}

    // All of these need the lock and leave clearing the error slot to their callers.
    void Begin();            // clears the error slot and the untouched flag
    void BeginGeographic();  // the same, with the geographic side brought up to date
    bool Report(Failure failure);
    bool UpdateGeographicSide();
    bool UpdateGridSide();
    void UpdateLatitudeDms();
    void UpdateLongitudeDms();
    std::string TextOf(const Dms& value, char hemisphere, std::int32_t frm, CoordinateLayout nmea);
    void MarkGeographicWritten();
    void MarkGridWritten();
    void StoreLatitude(double rads);
    void StoreLongitude(double rads);
    void ChangeDatum(std::int32_t datum);
    void ChangeDatumTo(const DatumReference& datum);
    void SetCustomDatum(const Ref<CustomDatum>& datum);
    void ChangeGrid(std::int32_t grid);
    void SetCustomGrid(const Ref<CustomGrid>& grid);
    void SetZone(std::int32_t zone);
    void CountChange() { modifiedCount_.fetch_add(1, std::memory_order_relaxed); }

    bool ReadGeoPoint(GeoPoint& point);
    bool ReadPlanePoint(PlanePoint& plane);
    bool ReadOtherGeoPoint(Position& other, GeoPoint& point);
    bool ReadOtherPlanePoint(Position& other, PlanePoint& plane);
    double GreatCircleBearing(Position& other);
    double GridBearing(Position& other);

    Lock lock_;
    State state_;
    std::atomic<std::uint32_t> modifiedCount_{0};
};

}  // namespace kavrel
