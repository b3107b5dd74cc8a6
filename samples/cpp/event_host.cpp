// A C++ host with events: replays a receiver's log through NmeaParser and prints what arrives.
//     event_host <log file>
// Shows the early-bound interface, a sink for the events, and how errors are read.

#include <ocidl.h>
#include <oleauto.h>
#include <windows.h>

#include <cstdio>
#include <map>
#include <string>

#include "KavrelCE_h.h"

namespace {

std::string Narrow(const wchar_t* text) {
    return text != nullptr ? std::string(text, text + wcslen(text)) : std::string();
}

// Owns a variant.
struct Var : VARIANT {
    Var() { VariantInit(this); }
    explicit Var(const std::string& text) {
        vt = VT_BSTR;
        bstrVal = SysAllocString(std::wstring(text.begin(), text.end()).c_str());
    }
    explicit Var(LONG number) {
        vt = VT_I4;
        lVal = number;
    }
    ~Var() { VariantClear(this); }
    Var(const Var&) = delete;
    Var& operator=(const Var&) = delete;
};

// Receives the events of _INmeaParserEvents. Lives on the stack, so its count does not matter.
class Sink final : public IDispatch {
  public:
    const std::map<std::string, int>& counts() const { return counts_; }

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        *object = nullptr;
        if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IDispatch) &&
            !IsEqualIID(id, DIID__INmeaParserEvents)) {
            return E_NOINTERFACE;
        }
        *object = this;
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }

    STDMETHODIMP Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*,
                        EXCEPINFO*, UINT*) override {
        constexpr DISPID kGeneric = 1;
        constexpr DISPID kOnGpsFix = 6;
        IDispatch* const object = V_DISPATCH(&arguments->rgvarg[0]);
        if (event == kGeneric) CountSentence(object);
        if (event == kOnGpsFix) PrintFix(object);
        return S_OK;
    }

  private:
    void CountSentence(IDispatch* object) {
        INmeaSentence* sentence = nullptr;
        if (FAILED(
                object->QueryInterface(IID_INmeaSentence, reinterpret_cast<void**>(&sentence)))) {
            return;
        }
        Var command;
        sentence->get_Command(&command);
        sentence->Release();
        ++counts_[Narrow(V_BSTR(&command))];
    }

    void PrintFix(IDispatch* object) {
        constexpr int kEvery = 20;
        if (fixes_++ % kEvery != 0) return;
        IGpsFix* fix = nullptr;
        if (FAILED(object->QueryInterface(IID_IGpsFix, reinterpret_cast<void**>(&fix)))) return;
        Var type;
        Var utc;
        Var position;
        fix->get_FixType(&type);
        fix->get_UTC(&utc);
        fix->get_Position(&position);
        fix->Release();
        VariantChangeType(&utc, &utc, 0, VT_BSTR);
        std::printf("fix of type %ld at %s, %s\n", V_I4(&type),
                    V_VT(&utc) == VT_BSTR ? Narrow(V_BSTR(&utc)).c_str() : "no time",
                    Place(V_DISPATCH(&position)).c_str());
    }

    // "47 30'0.35 N 8 43'0.66 E", or nothing for a fix without a position.
    static std::string Place(IDispatch* object) {
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

    int fixes_ = 0;
    std::map<std::string, int> counts_;
};

int Fail(const char* what, HRESULT result) {
    std::fprintf(stderr, "%s: 0x%08lx\n", what, static_cast<unsigned long>(result));
    return 1;
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

bool Replay(INmeaParser* parser, const char* fileName) {
    std::FILE* const log = std::fopen(fileName, "rb");
    if (log == nullptr) {
        std::fprintf(stderr, "cannot open %s\n", fileName);
        return false;
    }
    char line[256];
    while (std::fgets(line, sizeof(line), log) != nullptr)
        parser->Parse(Var(std::string(line)));
    std::fclose(log);
    return true;
}

int Run(const char* fileName) {
    INmeaParser* parser = nullptr;
    HRESULT result = CoCreateInstance(CLSID_NmeaParser, nullptr, CLSCTX_INPROC_SERVER,
                                      IID_INmeaParser, reinterpret_cast<void**>(&parser));
    if (FAILED(result)) return Fail("KavrelCE.NmeaParser is not registered", result);

    IConnectionPointContainer* container = nullptr;
    IConnectionPoint* point = nullptr;
    DWORD cookie = 0;
    Sink sink;
    parser->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container));
    container->FindConnectionPoint(DIID__INmeaParserEvents, &point);
    container->Release();
    result = point->Advise(&sink, &cookie);
    if (FAILED(result)) return Fail("Advise", result);

    const bool isReplayed = Replay(parser, fileName);
    for (const auto& [command, count] : sink.counts()) {
        std::printf("%s %d\n", command.c_str(), count);
    }
    PrintLastError(parser->put_GpsDatum(Var(29L)));

    point->Unadvise(cookie);
    point->Release();
    parser->Release();
    return isReplayed ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: event_host <log file>\n");
        return 2;
    }
    CoInitialize(nullptr);
    const int code = Run(argv[1]);
    CoUninitialize();
    return code;
}
