#include "automation/position_object.h"

#include <cstdint>
#include <type_traits>
#include <utility>

#include "KavrelCE_h.h"
#include "frame/automation_object.h"
#include "frame/object_safety.h"
#include "frame/record_argument.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Method<&IPosition::LatitudeDMS>("LatitudeDMS", 1),
    Method<&IPosition::LongitudeDMS>("LongitudeDMS", 2),
    Query<&IPosition::LatitudeString>("LatitudeString", 3),
    Query<&IPosition::LongitudeString>("LongitudeString", 4),
    Query<&IPosition::Altitude>("Altitude", 5),
    Get<&IPosition::get_LatitudeRads>("LatitudeRads", 6),
    Put<&IPosition::put_LatitudeRads>("LatitudeRads", 6),
    Get<&IPosition::get_LongitudeRads>("LongitudeRads", 7),
    Put<&IPosition::put_LongitudeRads>("LongitudeRads", 7),
    Method<&IPosition::SetLatitudeDMS>("SetLatitudeDMS", 8),
    Method<&IPosition::SetLongitudeDMS>("SetLongitudeDMS", 9),
    Method<&IPosition::SetAltitude>("SetAltitude", 10),
    Get<&IPosition::get_Datum>("Datum", 11),
    Put<&IPosition::put_Datum>("Datum", 11),
    Get<&IPosition::get_Grid>("Grid", 12),
    Put<&IPosition::put_Grid>("Grid", 12),
    Get<&IPosition::get_Easting>("Easting", 13),
    Put<&IPosition::put_Easting>("Easting", 13),
    Get<&IPosition::get_Northing>("Northing", 14),
    Put<&IPosition::put_Northing>("Northing", 14),
    Get<&IPosition::get_Zone>("Zone", 15),
    Put<&IPosition::put_Zone>("Zone", 15),
    Get<&IPosition::get_Latitude>("Latitude", 16),
    Put<&IPosition::put_Latitude>("Latitude", 16),
    Get<&IPosition::get_Longitude>("Longitude", 17),
    Put<&IPosition::put_Longitude>("Longitude", 17),
    Query<&IPosition::Distance>("Distance", 18),
    Query<&IPosition::Bearing>("Bearing", 19),
    Method<&IPosition::Move>("Move", 20),
    Query<&IPosition::Copy>("Copy", 21),
    Get<&IPosition::get_ModifiedCount>("ModifiedCount", 22),
    Query<&IPosition::IsSameDatum>("IsSameDatum", 23),
    Query<&IPosition::IsSameGrid>("IsSameGrid", 24),
    Method<&IPosition::MakeSameDatum>("MakeSameDatum", 25),
    Method<&IPosition::MakeSameGrid>("MakeSameGrid", 26),
    PutRef<&IPosition::putref_CustomDatum>("CustomDatum", 27),
    PutRef<&IPosition::putref_CustomGrid>("CustomGrid", 28),
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
    using AutomationObject::AutomationObject;

    STDMETHOD(QueryInterface)(REFIID id, void** object) override {
        const HRESULT found = AutomationObject::QueryInterface(id, object);
        if (found != E_NOINTERFACE || !IsEqualIID(id, IID_IObjectSafety)) return found;
        *object = static_cast<IObjectSafety*>(this);
        AddRef();
        return S_OK;
    }

    STDMETHOD(LatitudeDMS)
    (VARIANT* degrees, VARIANT* minutes, VARIANT* seconds, VARIANT* hemisphere) override {
        return GiveDms(&Position::LatitudeDMS, degrees, minutes, seconds, hemisphere);
    }
    STDMETHOD(LongitudeDMS)
    (VARIANT* degrees, VARIANT* minutes, VARIANT* seconds, VARIANT* hemisphere) override {
        return GiveDms(&Position::LongitudeDMS, degrees, minutes, seconds, hemisphere);
    }
    STDMETHOD(LatitudeString)(VARIANT frm, VARIANT* result) override {
        return GiveInFormat<&Position::LatitudeString>(result, frm);
    }
    STDMETHOD(LongitudeString)(VARIANT frm, VARIANT* result) override {
        return GiveInFormat<&Position::LongitudeString>(result, frm);
    }
    STDMETHOD(Altitude)(VARIANT frm, VARIANT* result) override {
        return GiveInFormat<&Position::Altitude>(result, frm);
    }
    STDMETHOD(get_LatitudeRads)(VARIANT* result) override {
        return GiveBy<&Position::LatitudeRads>(result);
    }
    STDMETHOD(get_LongitudeRads)(VARIANT* result) override {
        return GiveBy<&Position::LongitudeRads>(result);
    }
    STDMETHOD(put_LatitudeRads)(VARIANT value) override {
        return TakeBy<double, &Position::PutLatitudeRads>(value);
    }
    STDMETHOD(put_LongitudeRads)(VARIANT value) override {
        return TakeBy<double, &Position::PutLongitudeRads>(value);
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
    STDMETHOD(get_Datum)(VARIANT* result) override { return GiveBy<&Position::Datum>(result); }
    STDMETHOD(put_Datum)(VARIANT value) override {
        return TakeBy<std::int16_t, &Position::PutDatum>(value);
    }
    STDMETHOD(get_Grid)(VARIANT* result) override { return GiveBy<&Position::Grid>(result); }
    STDMETHOD(put_Grid)(VARIANT value) override {
        return TakeBy<std::int16_t, &Position::PutGrid>(value);
    }
    STDMETHOD(get_Easting)(VARIANT* result) override { return GiveBy<&Position::Easting>(result); }
    STDMETHOD(put_Easting)(VARIANT value) override {
        return TakeBy<double, &Position::PutEasting>(value);
    }
    STDMETHOD(get_Northing)(VARIANT* result) override {
        return GiveBy<&Position::Northing>(result);
    }
    STDMETHOD(put_Northing)(VARIANT value) override {
        return TakeBy<double, &Position::PutNorthing>(value);
    }
    STDMETHOD(get_Zone)(VARIANT* result) override { return GiveBy<&Position::Zone>(result); }
    // Zones are texts with a letter to some hosts and numbers to others.
    STDMETHOD(put_Zone)(VARIANT value) override {
        if (IsText(value)) {
            return Run<std::string_view>(&Position::PutZone, TextArgument(value).view());
        }
        return Run<std::int32_t>(&Position::PutZone, ToInt32(value));
    }
    STDMETHOD(get_Latitude)(VARIANT* result) override {
        return GiveBy<&Position::Latitude>(result);
    }
    STDMETHOD(put_Latitude)(VARIANT value) override {
        return TakeBy<double, &Position::PutLatitude>(value);
    }
    STDMETHOD(get_Longitude)(VARIANT* result) override {
        return GiveBy<&Position::Longitude>(result);
    }
    STDMETHOD(put_Longitude)(VARIANT value) override {
        return TakeBy<double, &Position::PutLongitude>(value);
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
    STDMETHOD(Copy)(VARIANT* result) override { return GiveBy<&Position::Copy>(result); }
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
    // Runs an operation and checks its error before another thread can overwrite it. Arguments are
    // converted before: that may call the host, which must not happen under a lock.
    template <typename Operation>
    auto Call(HRESULT& outcome, Position* other, Operation&& operation) {
        const Position::Scope scope(record(), other);
        if constexpr (std::is_void_v<decltype(operation(record()))>) {
            operation(record());
            outcome = Check();
        } else {
            auto value = operation(record());
            outcome = Check();
            return value;
        }
    }

    // Properties: the members of one type share the code around their operation.
    template <auto Getter>
    HRESULT GiveBy(VARIANT* result) {
        return Give(
            result, +[](Position& position) { return (position.*Getter)(); });
    }
    template <typename Value>
    HRESULT Give(VARIANT* result, Value (*getter)(Position& position)) {
        if (result == nullptr) return E_POINTER;
        HRESULT outcome;
        SetVariant(*result, ToResult(Call(outcome, nullptr, getter)));
        return outcome;
    }
    template <auto Getter>
    HRESULT GiveInFormat(VARIANT* result, const VARIANT& frm) {
        return GiveInFormat(
            result, frm,
            +[](Position& position, std::int32_t format) { return (position.*Getter)(format); });
    }
    template <typename Value>
    HRESULT GiveInFormat(VARIANT* result, const VARIANT& frm,
                         Value (*getter)(Position& position, std::int32_t format)) {
        if (result == nullptr) return E_POINTER;
        const std::int16_t format = ToInt16(frm);
        HRESULT outcome;
        SetVariant(*result, Call(outcome, nullptr,
                                 [=](Position& position) { return getter(position, format); }));
        return outcome;
    }
    template <typename Value, auto Setter>
    HRESULT TakeBy(const VARIANT& value) {
        return Take(
            value, +[](Position& position, Value converted) { (position.*Setter)(converted); });
    }
    template <typename Value>
    HRESULT Take(const VARIANT& value, void (*setter)(Position& position, Value value)) {
        const auto converted = FromVariant<Value>(value);
        HRESULT outcome;
        Call(outcome, nullptr, [=](Position& position) { setter(position, converted); });
        return outcome;
    }

    // A member without a result, from its converted arguments.
    template <typename... Parameters>
    HRESULT Run(void (Position::*operation)(Parameters...),
                const std::type_identity_t<Parameters>&... arguments) {
        HRESULT outcome;
        Call(outcome, nullptr, [&](Position& position) { (position.*operation)(arguments...); });
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
        SetVariant(*result, Call(outcome, other.get(), [&](Position& position) {
            return (position.*operation)(other.get(), arguments...);
        }));
        return outcome;
    }
    HRESULT RunWithOther(const VARIANT& position2, void (Position::*operation)(Position*)) {
        Ref<Position> other;
        HRESULT outcome = FindPosition(position2, other);
        if (FAILED(outcome)) return outcome;
        Call(outcome, other.get(), [&](Position& position) { (position.*operation)(other.get()); });
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
        const DmsWithHemisphere dms =
            Call(outcome, nullptr, [=](Position& position) { return (position.*getter)(); });
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

ComRef<IDispatch> CreatePositionObject() {
    return ObjectWithCore<PositionObject>::Make(kClass, TryMakeRef<Position>());
}

ComRef<IDispatch> WrapPosition(Ref<Position> record) {
    return ObjectWithCore<PositionObject>::Make(kClass, std::move(record));
}

HRESULT ReturnPosition(Ref<Position> record, VARIANT* result) {
    if (result == nullptr) return E_POINTER;
    SetVariant(*result, WrapPosition(std::move(record)));
    return S_OK;
}

}  // namespace kavrel
