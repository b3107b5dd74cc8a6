#include "automation/custom_grid_object.h"

#include <new>
#include <utility>

#include "KavrelCE_h.h"
#include "automation/custom_datum_object.h"
#include "frame/automation_object.h"
#include "frame/free_threaded.h"
#include "frame/record_argument.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&ICustomGrid::get_Datum>(L"Datum", 1),
    Put<&ICustomGrid::put_Datum>(L"Datum", 1),
    Get<&ICustomGrid::get_CustomDatum>(L"CustomDatum", 2),
    PutRef<&ICustomGrid::putref_CustomDatum>(L"CustomDatum", 2),
    Get<&ICustomGrid::get_Algorithm>(L"Algorithm", 3),
    Put<&ICustomGrid::put_Algorithm>(L"Algorithm", 3),
    Get<&ICustomGrid::get_FalseEasting>(L"FalseEasting", 4),
    Put<&ICustomGrid::put_FalseEasting>(L"FalseEasting", 4),
    Get<&ICustomGrid::get_FalseNorthing>(L"FalseNorthing", 5),
    Put<&ICustomGrid::put_FalseNorthing>(L"FalseNorthing", 5),
    Get<&ICustomGrid::get_LongitudeOfOrigin>(L"LongitudeOfOrigin", 6),
    Put<&ICustomGrid::put_LongitudeOfOrigin>(L"LongitudeOfOrigin", 6),
    Get<&ICustomGrid::get_LatitudeOfOrigin>(L"LatitudeOfOrigin", 7),
    Put<&ICustomGrid::put_LatitudeOfOrigin>(L"LatitudeOfOrigin", 7),
    Get<&ICustomGrid::get_ScaleFactor>(L"ScaleFactor", 8),
    Put<&ICustomGrid::put_ScaleFactor>(L"ScaleFactor", 8),
    Get<&ICustomGrid::get_LatitudeSP1>(L"LatitudeSP1", 9),
    Put<&ICustomGrid::put_LatitudeSP1>(L"LatitudeSP1", 9),
    Get<&ICustomGrid::get_LatitudeSP2>(L"LatitudeSP2", 10),
    Put<&ICustomGrid::put_LatitudeSP2>(L"LatitudeSP2", 10),
};

constexpr ClassDescription kClass = {CLSID_CustomGrid, IID_ICustomGrid, nullptr, kMembers};

class CustomGridObject final : public AutomationObject<ICustomGrid, CustomGrid, FreeThreaded> {
  public:
    explicit CustomGridObject(Ref<CustomGrid> record)
        : AutomationObject(kClass, std::move(record)) {}

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

  private:
    HRESULT QueryFurtherInterface(REFIID id, void** object) override {
        return QueryMarshaler(*static_cast<ICustomGrid*>(this), id, object);
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

ComRef<IUnknown> CreateCustomGridObject() {
    Ref<CustomGrid> record = TryMakeRef<CustomGrid>();
    if (!record) return nullptr;
    ICustomGrid* const object = new (std::nothrow) CustomGridObject(std::move(record));
    return ComRef<IUnknown>::Adopt(object);
}

}  // namespace kavrel
