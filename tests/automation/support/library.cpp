#include "automation/support/library.h"

#include <ostream>
#include <string>

#include "KavrelCE_h.h"
#include "automation/support/var.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

const CreatableClass kCreatableClasses[] = {
    {L"NmeaParser", CLSID_NmeaParser, IID_INmeaParser},
    {L"Position", CLSID_Position, IID_IPosition},
    {L"CustomGrid", CLSID_CustomGrid, IID_ICustomGrid},
    {L"CustomDatum", CLSID_CustomDatum, IID_ICustomDatum},
};

template <typename Function>
Function* Export(const char* name) {
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(LoadedLibrary(), name)));
}

// COM for the whole program: objects may outlive one test when it fails.
class ComEnvironment final : public testing::Environment {
  public:
    void SetUp() override {
        ASSERT_NE(nullptr, LoadedLibrary()) << KAVREL_DLL;
        ASSERT_EQ(S_OK, CoInitialize(nullptr));
    }
    void TearDown() override {
        EXPECT_EQ(S_OK, CanUnloadNow()) << "objects or locks of the library are left over";
        CoUninitialize();
    }
};

[[maybe_unused]] const auto* const kEnvironment =
    testing::AddGlobalTestEnvironment(new ComEnvironment);

}  // namespace

std::span<const CreatableClass> CreatableClasses() {
    return kCreatableClasses;
}

void PrintTo(const CreatableClass& creatable, std::ostream* out) {
    *out << Narrow(creatable.name);
}

HMODULE LoadedLibrary() {
    static const HMODULE module = LoadLibraryA(KAVREL_DLL);
    return module;
}

HRESULT GetClassObjectOf(REFCLSID classId, REFIID interfaceId, void** object) {
    using Function = HRESULT WINAPI(REFCLSID, REFIID, void**);
    return Export<Function>("DllGetClassObject")(classId, interfaceId, object);
}

HRESULT CanUnloadNow() {
    return Export<HRESULT WINAPI()>("DllCanUnloadNow")();
}

HRESULT RegisterServer() {
    return Export<HRESULT WINAPI()>("DllRegisterServer")();
}

HRESULT UnregisterServer() {
    return Export<HRESULT WINAPI()>("DllUnregisterServer")();
}

ComPtr<IDispatch> CreateByName(const std::wstring& progId) {
    CLSID classId = {};
    ComPtr<IDispatch> object;
    if (SUCCEEDED(CLSIDFromProgID(progId.c_str(), &classId))) {
        CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object));
    }
    return object;
}

ComPtr<IDispatch> CreateDirectly(REFCLSID classId) {
    ComPtr<IClassFactory> factory;
    ComPtr<IDispatch> object;
    if (SUCCEEDED(GetClassObjectOf(classId, IID_PPV_ARGS(&factory)))) {
        factory->CreateInstance(nullptr, IID_PPV_ARGS(&object));
    }
    return object;
}

void AutomationTest::SetUp() {
    ASSERT_EQ(S_OK, CanUnloadNow()) << "left over by an earlier test";
    SetErrorInfo(0, nullptr);
}

void AutomationTest::TearDown() {
    EXPECT_EQ(S_OK, CanUnloadNow()) << "the test has not released every object";
}

}  // namespace kavrel::tests
