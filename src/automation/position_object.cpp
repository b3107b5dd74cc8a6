#include "automation/position_object.h"

#include <new>
#include <type_traits>
#include <utility>

#include "KavrelCE_h.h"
#include "frame/automation_object.h"
#include "frame/object_safety.h"
#include "frame/record_argument.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Method<&IPosition::LatitudeDMS>(L"LatitudeDMS", 1),
    Method<&IPosition::LongitudeDMS>(L"LongitudeDMS", 2),
    Query<&IPosition::LatitudeString>(L"LatitudeString", 3),
    Query<&IPosition::LongitudeString>(L"LongitudeString", 4),
    Query<&IPosition::Altitude>(L"Altitude", 5),
    Get<&IPosition::get_LatitudeRads>(L"LatitudeRads", 6),
    Put<&IPosition::put_LatitudeRads>(L"LatitudeRads", 6),
    Get<&IPosition::get_LongitudeRads>(L"LongitudeRads", 7),
    Put<&IPosition::put_LongitudeRads>(L"LongitudeRads", 7),
    Method<&IPosition::SetLatitudeDMS>(L"SetLatitudeDMS", 8),
    Method<&IPosition::SetLongitudeDMS>(L"SetLongitudeDMS", 9),
    Method<&IPosition::SetAltitude>(L"SetAltitude", 10),
    Get<&IPosition::get_Datum>(L"Datum", 11),
    Put<&IPosition::put_Datum>(L"Datum", 11),
    Get<&IPosition::get_Grid>(L"Grid", 12),
    Put<&IPosition::put_Grid>(L"Grid", 12),
    Get<&IPosition::get_Easting>(L"Easting", 13),
    Put<&IPosition::put_Easting>(L"Easting", 13),
    Get<&IPosition::get_Northing>(L"Northing", 14),
    Put<&IPosition::put_Northing>(L"Northing", 14),
    Get<&IPosition::get_Zone>(L"Zone", 15),
    Put<&IPosition::put_Zone>(L"Zone", 15),
    Get<&IPosition::get_Latitude>(L"Latitude", 16),
    Put<&IPosition::put_Latitude>(L"Latitude", 16),
    Get<&IPosition::get_Longitude>(L"Longitude", 17),
    Put<&IPosition::put_Longitude>(L"Longitude", 17),
    Query<&IPosition::Distance>(L"Distance", 18),
    Query<&IPosition::Bearing>(L"Bearing", 19),
    Method<&IPosition::Move>(L"Move", 20),
    Query<&IPosition::Copy>(L"Copy", 21),
    Get<&IPosition::get_ModifiedCount>(L"ModifiedCount", 22),
    Query<&IPosition::IsSameDatum>(L"IsSameDatum", 23),
    Query<&IPosition::IsSameGrid>(L"IsSameGrid", 24),
    Method<&IPosition::MakeSameDatum>(L"MakeSameDatum", 25),
    Method<&IPosition::MakeSameGrid>(L"MakeSameGrid", 26),
    PutRef<&IPosition::putref_CustomDatum>(L"CustomDatum", 27),
    PutRef<&IPosition::putref_CustomGrid>(L"CustomGrid", 28),
};

constexpr ClassDescription kClass = {CLSID_Position, IID_IPosition, nullptr, kMembers};

ComRef<IDispatch> ToResult(Ref<Position> value) {
    return WrapPosition(std::move(value));
}
template <typename Value>
Value ToResult(Value value) {
    return value;
}

// A position may be used from several threads, so each member reads its error under the lock that
// its operation runs under.
class PositionObject final : public AutomationObject<IPosition, Position, ObjectSafety> {
  public:
    explicit PositionObject(Ref<Position> record) : AutomationObject(kClass, std::move(record)) {}

    STDMETHOD(LatitudeDMS)
    (VARIANT* degrees, VARIANT* minutes, VARIANT* seconds, VARIANT* hemisphere) override {
        return GiveDms(&Position::LatitudeDMS, degrees, minutes, seconds, hemisphere);
    }
    STDMETHOD(LongitudeDMS)
    (VARIANT* degrees, VARIANT* minutes, VARIANT* seconds, VARIANT* hemisphere) override {
        return GiveDms(&Position::LongitudeDMS, degrees, minutes, seconds, hemisphere);
    }
    STDMETHOD(LatitudeString)(VARIANT frm, VARIANT* result) override {
        return Answer(result, &Position::LatitudeString, ToInt16(frm));
    }
    STDMETHOD(LongitudeString)(VARIANT frm, VARIANT* result) override {
        return Answer(result, &Position::LongitudeString, ToInt16(frm));
    }
    STDMETHOD(Altitude)(VARIANT frm, VARIANT* result) override {
        return Answer(result, &Position::Altitude, ToInt16(frm));
    }
    STDMETHOD(get_LatitudeRads)(VARIANT* result) override {
        return Answer(result, &Position::LatitudeRads);
    }
    STDMETHOD(get_LongitudeRads)(VARIANT* result) override {
        return Answer(result, &Position::LongitudeRads);
    }
    STDMETHOD(put_LatitudeRads)(VARIANT value) override {
        return Run(&Position::PutLatitudeRads, ToDouble(value));
    }
    STDMETHOD(put_LongitudeRads)(VARIANT value) override {
        return Run(&Position::PutLongitudeRads, ToDouble(value));
    }
    STDMETHOD(SetLatitudeDMS)
    (VARIANT degrees, VARIANT minutes, VARIANT seconds, VARIANT hemisphere) override {
        return TakeDms(&Position::SetLatitudeDMS, degrees, minutes, seconds, hemisphere);
    }
    STDMETHOD(SetLongitudeDMS)
    (VARIANT degrees, VARIANT minutes, VARIANT seconds, VARIANT hemisphere) override {
        return TakeDms(&Position::SetLongitudeDMS, degrees, minutes, seconds, hemisphere);
    }
    STDMETHOD(SetAltitude)(VARIANT frm, VARIANT altitude) override {
        return Run(&Position::SetAltitude, ToInt16(frm), ToDouble(altitude));
    }
    STDMETHOD(get_Datum)(VARIANT* result) override { return Answer(result, &Position::Datum); }
    STDMETHOD(put_Datum)(VARIANT value) override {
        return Run(&Position::PutDatum, ToInt16(value));
    }
    STDMETHOD(get_Grid)(VARIANT* result) override { return Answer(result, &Position::Grid); }
    STDMETHOD(put_Grid)(VARIANT value) override { return Run(&Position::PutGrid, ToInt16(value)); }
    STDMETHOD(get_Easting)(VARIANT* result) override { return Answer(result, &Position::Easting); }
    STDMETHOD(put_Easting)(VARIANT value) override {
        return Run(&Position::PutEasting, ToDouble(value));
    }
    STDMETHOD(get_Northing)(VARIANT* result) override {
        return Answer(result, &Position::Northing);
    }
    STDMETHOD(put_Northing)(VARIANT value) override {
        return Run(&Position::PutNorthing, ToDouble(value));
    }
    STDMETHOD(get_Zone)(VARIANT* result) override { return Answer(result, &Position::Zone); }
    // Zones are texts with a letter to some hosts and numbers to others.
    STDMETHOD(put_Zone)(VARIANT value) override {
        if (IsText(value)) {
            return Run<std::string_view>(&Position::PutZone, TextArgument(value).view());
        }
        return Run<std::int32_t>(&Position::PutZone, ToInt32(value));
    }
    STDMETHOD(get_Latitude)(VARIANT* result) override {
        return Answer(result, &Position::Latitude);
    }
    STDMETHOD(put_Latitude)(VARIANT value) override {
        return Run(&Position::PutLatitude, ToDouble(value));
    }
    STDMETHOD(get_Longitude)(VARIANT* result) override {
        return Answer(result, &Position::Longitude);
    }
    STDMETHOD(put_Longitude)(VARIANT value) override {
        return Run(&Position::PutLongitude, ToDouble(value));
    }
    STDMETHOD(Distance)(VARIANT position2, VARIANT method, VARIANT* result) override {
        return AnswerWithOther(result, position2, &Position::Distance, ToInt32(method));
    }
    STDMETHOD(Bearing)(VARIANT position2, VARIANT method, VARIANT* result) override {
        return AnswerWithOther(result, position2, &Position::Bearing, ToInt32(method));
    }
    STDMETHOD(Move)(VARIANT distance, VARIANT bearing, VARIANT method) override {
        return Run(&Position::Move, ToDouble(distance), ToDouble(bearing), ToInt32(method));
    }
    STDMETHOD(Copy)(VARIANT* result) override { return Answer(result, &Position::Copy); }
    STDMETHOD(get_ModifiedCount)(VARIANT* result) override {
        if (result == nullptr) return E_POINTER;
        SetVariant(*result, static_cast<std::int32_t>(record().ModifiedCount()));
        return S_OK;
    }
    STDMETHOD(IsSameDatum)(VARIANT position2, VARIANT* result) override {
        return AnswerWithOther(result, position2, &Position::IsSameDatum);
    }
    STDMETHOD(IsSameGrid)(VARIANT position2, VARIANT* result) override {
        return AnswerWithOther(result, position2, &Position::IsSameGrid);
    }
    STDMETHOD(MakeSameDatum)(VARIANT position2) override {
        return RunWithOther(position2, &Position::MakeSameDatum);
    }
    STDMETHOD(MakeSameGrid)(VARIANT position2) override {
        return RunWithOther(position2, &Position::MakeSameGrid);
    }
    STDMETHOD(putref_CustomDatum)(VARIANT value) override {
        Ref<CustomDatum> datum;
        const HRESULT found = RecordFromArgument(value, CLSID_CustomDatum, IID_ICustomDatum, datum);
        if (FAILED(found)) return RefuseObject(found);
        return Run(&Position::PutCustomDatum, datum);
    }
    STDMETHOD(putref_CustomGrid)(VARIANT value) override {
        Ref<CustomGrid> grid;
        const HRESULT found = RecordFromArgument(value, CLSID_CustomGrid, IID_ICustomGrid, grid);
        if (FAILED(found)) return RefuseObject(found);
        return Run(&Position::PutCustomGrid, grid);
    }

  private:
    HRESULT QueryFurtherInterface(REFIID id, void** object) override {
        *object = nullptr;
        if (!IsEqualIID(id, IID_IObjectSafety)) return E_NOINTERFACE;
        *object = static_cast<IObjectSafety*>(this);
        AddRef();
        return S_OK;
    }

    // Runs an operation and checks its error before another thread can overwrite it. Arguments are
    // converted before: that may call the host, which must not happen under a lock.
    template <typename Value, typename... Parameters>
    Value Call(HRESULT& outcome, Position* other, Value (Position::*operation)(Parameters...),
               const std::type_identity_t<Parameters>&... arguments) {
        const Position::Scope scope(record(), other);
        if constexpr (std::is_void_v<Value>) {
            (record().*operation)(arguments...);
            outcome = Check(record().error());
        } else {
            Value value = (record().*operation)(arguments...);
            outcome = Check(record().error());
            return value;
        }
    }

    // A member with a result, or without one.
    template <typename Value, typename... Parameters>
    HRESULT Answer(VARIANT* result, Value (Position::*operation)(Parameters...),
                   const std::type_identity_t<Parameters>&... arguments) {
        if (result == nullptr) return E_POINTER;
        HRESULT outcome;
        SetVariant(*result, ToResult(Call(outcome, nullptr, operation, arguments...)));
        return outcome;
    }
    template <typename... Parameters>
    HRESULT Run(void (Position::*operation)(Parameters...),
                const std::type_identity_t<Parameters>&... arguments) {
        HRESULT outcome;
        Call(outcome, nullptr, operation, arguments...);
        return outcome;
    }

    // The same with a second position, which a member takes first.
    template <typename Value, typename... Parameters>
    HRESULT AnswerWithOther(VARIANT* result, const VARIANT& position2,
                            Value (Position::*operation)(Position*, Parameters...),
                            const std::type_identity_t<Parameters>&... arguments) {
        if (result == nullptr) return E_POINTER;
        Ref<Position> other;
        HRESULT outcome = FindPosition(position2, other);
        if (FAILED(outcome)) return outcome;
        SetVariant(*result,
                   ToResult(Call(outcome, other.get(), operation, other.get(), arguments...)));
        return outcome;
    }
    HRESULT RunWithOther(const VARIANT& position2, void (Position::*operation)(Position*)) {
        Ref<Position> other;
        HRESULT outcome = FindPosition(position2, other);
        if (SUCCEEDED(outcome)) Call(outcome, other.get(), operation, other.get());
        return outcome;
    }
    HRESULT FindPosition(const VARIANT& argument, Ref<Position>& position) {
        const HRESULT found = RecordFromArgument(argument, CLSID_Position, IID_IPosition, position);
        return FAILED(found) ? RefuseObject(found) : found;
    }

    HRESULT GiveDms(DmsWithHemisphere (Position::*getter)(), VARIANT* degrees, VARIANT* minutes,
                    VARIANT* seconds, VARIANT* hemisphere) {
        if (degrees == nullptr || minutes == nullptr || seconds == nullptr ||
            hemisphere == nullptr) {
            return E_POINTER;
        }
        HRESULT outcome;
        const DmsWithHemisphere dms = Call(outcome, nullptr, getter);
        SetVariant(*degrees, dms.degrees);
        SetVariant(*minutes, dms.minutes);
        SetVariant(*seconds, dms.seconds);
        SetVariant(*hemisphere, std::string_view(&dms.hemisphere, 1));
        return outcome;
    }

    HRESULT TakeDms(void (Position::*setter)(double, double, double, std::string_view),
                    const VARIANT& degrees, const VARIANT& minutes, const VARIANT& seconds,
                    const VARIANT& hemisphere) {
        return Run(setter, ToDouble(degrees), ToDouble(minutes), ToDouble(seconds),
                   TextArgument(hemisphere).view());
    }
};

}  // namespace

ComRef<IUnknown> CreatePositionObject() {
    Ref<Position> record = TryMakeRef<Position>();
    if (!record) return nullptr;
    IPosition* const object = new (std::nothrow) PositionObject(std::move(record));
    return ComRef<IUnknown>::Adopt(object);
}

ComRef<IDispatch> WrapPosition(Ref<Position> record) {
    if (!record) return nullptr;
    return ComRef<IDispatch>::Adopt(new (std::nothrow) PositionObject(std::move(record)));
}

}  // namespace kavrel
