#include "automation/custom_grid_object.h"

#include <utility>

#include "KavrelCE_h.h"
#include "automation/custom_datum_object.h"
#include "frame/automation_object.h"
#include "frame/free_threaded.h"
#include "frame/record_argument.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&ICustomGrid::get_Datum>("Datum", 1),
    Put<&ICustomGrid::put_Datum>("Datum", 1),
    Get<&ICustomGrid::get_CustomDatum>("CustomDatum", 2),
    PutRef<&ICustomGrid::putref_CustomDatum>("CustomDatum", 2),
    Get<&ICustomGrid::get_Algorithm>("Algorithm", 3),
    Put<&ICustomGrid::put_Algorithm>("Algorithm", 3),
    Get<&ICustomGrid::get_FalseEasting>("FalseEasting", 4),
    Put<&ICustomGrid::put_FalseEasting>("FalseEasting", 4),
    Get<&ICustomGrid::get_FalseNorthing>("FalseNorthing", 5),
    Put<&ICustomGrid::put_FalseNorthing>("FalseNorthing", 5),
    Get<&ICustomGrid::get_LongitudeOfOrigin>("LongitudeOfOrigin", 6),
    Put<&ICustomGrid::put_LongitudeOfOrigin>("LongitudeOfOrigin", 6),
    Get<&ICustomGrid::get_LatitudeOfOrigin>("LatitudeOfOrigin", 7),
    Put<&ICustomGrid::put_LatitudeOfOrigin>("LatitudeOfOrigin", 7),
    Get<&ICustomGrid::get_ScaleFactor>("ScaleFactor", 8),
    Put<&ICustomGrid::put_ScaleFactor>("ScaleFactor", 8),
    Get<&ICustomGrid::get_LatitudeSP1>("LatitudeSP1", 9),
    Put<&ICustomGrid::put_LatitudeSP1>("LatitudeSP1", 9),
    Get<&ICustomGrid::get_LatitudeSP2>("LatitudeSP2", 10),
    Put<&ICustomGrid::put_LatitudeSP2>("LatitudeSP2", 10),
};

constexpr ClassDescription kClass = {CLSID_CustomGrid, IID_ICustomGrid, nullptr, kMembers};

class CustomGridObject final : public AutomationObject<ICustomGrid, CustomGrid, FreeThreaded> {
  public:
    using AutomationObject::AutomationObject;

    STDMETHOD(QueryInterface)(REFIID id, void** object) override {
        const HRESULT found = AutomationObject::QueryInterface(id, object);
        if (found != E_NOINTERFACE) return found;
        return QueryMarshaler(*static_cast<ICustomGrid*>(this), id, object);
    }

    STDMETHOD(get_Datum)(VARIANT* result) override { return GetBy<&CustomGrid::Datum>(result); }
    STDMETHOD(put_Datum)(VARIANT value) override { return PutBy<&CustomGrid::PutDatum>(value); }
    STDMETHOD(get_CustomDatum)(VARIANT* result) override;
    STDMETHOD(putref_CustomDatum)(VARIANT value) override;
    STDMETHOD(get_Algorithm)(VARIANT* result) override {
        return GetBy<&CustomGrid::Algorithm>(result);
    }
    STDMETHOD(put_Algorithm)(VARIANT value) override {
        return PutBy<&CustomGrid::PutAlgorithm>(value);
    }
    STDMETHOD(get_FalseEasting)(VARIANT* result) override {
        return GetBy<&CustomGrid::FalseEasting>(result);
    }
    STDMETHOD(put_FalseEasting)(VARIANT value) override {
        return PutBy<&CustomGrid::PutFalseEasting>(value);
    }
    STDMETHOD(get_FalseNorthing)(VARIANT* result) override {
        return GetBy<&CustomGrid::FalseNorthing>(result);
    }
    STDMETHOD(put_FalseNorthing)(VARIANT value) override {
        return PutBy<&CustomGrid::PutFalseNorthing>(value);
    }
    STDMETHOD(get_LongitudeOfOrigin)(VARIANT* result) override {
        return GetBy<&CustomGrid::LongitudeOfOrigin>(result);
    }
    STDMETHOD(put_LongitudeOfOrigin)(VARIANT value) override {
        return PutBy<&CustomGrid::PutLongitudeOfOrigin>(value);
    }
    STDMETHOD(get_LatitudeOfOrigin)(VARIANT* result) override {
        return GetBy<&CustomGrid::LatitudeOfOrigin>(result);
    }
    STDMETHOD(put_LatitudeOfOrigin)(VARIANT value) override {
        return PutBy<&CustomGrid::PutLatitudeOfOrigin>(value);
    }
    STDMETHOD(get_ScaleFactor)(VARIANT* result) override {
        return GetBy<&CustomGrid::ScaleFactor>(result);
    }
    STDMETHOD(put_ScaleFactor)(VARIANT value) override {
        return PutBy<&CustomGrid::PutScaleFactor>(value);
    }
    STDMETHOD(get_LatitudeSP1)(VARIANT* result) override {
        return GetBy<&CustomGrid::LatitudeSP1>(result);
    }
    STDMETHOD(put_LatitudeSP1)(VARIANT value) override {
        return PutBy<&CustomGrid::PutLatitudeSP1>(value);
    }
    STDMETHOD(get_LatitudeSP2)(VARIANT* result) override {
        return GetBy<&CustomGrid::LatitudeSP2>(result);
    }
    STDMETHOD(put_LatitudeSP2)(VARIANT value) override {
        return PutBy<&CustomGrid::PutLatitudeSP2>(value);
    }
};

STDMETHODIMP CustomGridObject::get_CustomDatum(VARIANT* result) {
    return Return(result, [&] { return WrapCustomDatum(record().CustomDatum()); });
}

STDMETHODIMP CustomGridObject::putref_CustomDatum(VARIANT value) {
    Ref<CustomDatum> datum;
    const HRESULT found = RecordFromArgument(value, CLSID_CustomDatum, IID_ICustomDatum, datum);
    if (FAILED(found)) return RefuseObject(found);
    return Do([&] { record().PutCustomDatum(std::move(datum)); });
}

}  // namespace

ComRef<IDispatch> CreateCustomGridObject() {
    return ObjectWithCore<CustomGridObject>::Make(kClass, TryMakeRef<CustomGrid>());
}

}  // namespace kavrel
