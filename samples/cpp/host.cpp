#include "host.h"

#include <cstdio>

namespace host {
namespace {

// "47 30'0.35 N 8 43'0.66 E", or nothing for a fix without a position.
std::string DescribePlace(IDispatch* object) {
    IPosition* position = nullptr;
    if (object == nullptr ||
        FAILED(object->QueryInterface(IID_IPosition, reinterpret_cast<void**>(&position)))) {
        return "nowhere";
    }
    Var latitude;
    Var longitude;
    position->LatitudeString(Var(0L), &latitude);
    position->LongitudeString(Var(0L), &longitude);
    position->Release();
    return Narrow(V_BSTR(&latitude)) + " " + Narrow(V_BSTR(&longitude));
}

}  // namespace

std::string Narrow(const wchar_t* text) {
    return text != nullptr ? std::string(text, text + wcslen(text)) : std::string();
}

HRESULT EventSink::Connect(INmeaParser* parser) {
    IConnectionPointContainer* container = nullptr;
    HRESULT result =
        parser->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container));
    if (FAILED(result)) return result;
    result = container->FindConnectionPoint(DIID__INmeaParserEvents, &point_);
    container->Release();
    return FAILED(result) ? result : point_->Advise(this, &cookie_);
}

void EventSink::Disconnect() {
    if (point_ == nullptr) return;
    if (cookie_ != 0) point_->Unadvise(cookie_);
    cookie_ = 0;
    point_->Release();
    point_ = nullptr;
}

STDMETHODIMP EventSink::QueryInterface(REFIID id, void** object) {
    *object = nullptr;
    if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IDispatch) &&
        !IsEqualIID(id, DIID__INmeaParserEvents)) {
        return E_NOINTERFACE;
    }
    *object = static_cast<IDispatch*>(this);
    return S_OK;
}

STDMETHODIMP EventSink::Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*,
                               EXCEPINFO*, UINT*) {
    // The arguments stand in reverse order.
    OnEvent(event, V_DISPATCH(&arguments->rgvarg[arguments->cArgs - 1]));
    return S_OK;
}

std::string DescribeFix(IDispatch* object) {
    IGpsFix* fix = nullptr;
    if (FAILED(object->QueryInterface(IID_IGpsFix, reinterpret_cast<void**>(&fix)))) return {};
    Var type;
    Var utc;
    Var position;
    fix->get_FixType(&type);
    fix->get_UTC(&utc);
    fix->get_Position(&position);
    fix->Release();
    VariantChangeType(&utc, &utc, 0, VT_BSTR);
    return "fix of type " + std::to_string(V_I4(&type)) + " at " +
           (V_VT(&utc) == VT_BSTR ? Narrow(V_BSTR(&utc)) : "no time") + ", " +
           DescribePlace(V_DISPATCH(&position));
}

INmeaParser* CreateParser() {
    INmeaParser* parser = nullptr;
    const HRESULT result = CoCreateInstance(CLSID_NmeaParser, nullptr, CLSCTX_INPROC_SERVER,
                                            IID_INmeaParser, reinterpret_cast<void**>(&parser));
    if (FAILED(result)) {
        std::fprintf(stderr, "KavrelCE.NmeaParser is not registered: 0x%08lx\n",
                     static_cast<unsigned long>(result));
    }
    return parser;
}

void PrintLastError(HRESULT result) {
    IErrorInfo* info = nullptr;
    if (GetErrorInfo(0, &info) != S_OK) return;
    BSTR description = nullptr;
    BSTR source = nullptr;
    info->GetDescription(&description);
    info->GetSource(&source);
    info->Release();
    std::printf("error 0x%08lx \"%s\" from \"%s\"\n", static_cast<unsigned long>(result),
                Narrow(description).c_str(), Narrow(source).c_str());
    SysFreeString(description);
    SysFreeString(source);
}

}  // namespace host
