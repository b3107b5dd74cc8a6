// Registration: exactly which keys and values DllRegisterServer writes, when DllUnregisterServer
// takes them back, and what comes of a registry that refuses or a type library that is missing.
//
// The test leaves the library registered, as it found it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ocidl.h>
#include <ole2.h>

#include <map>
#include <string>

#include "KavrelCE_h.h"
#include "automation/support/failing_import.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"
#include "automation/support/steps.h"
#include "table.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

// The count of the module's users is kept under the name it would have in the system's directory:
// that of the device's core library, where there is one.
std::wstring UsageName() {
    wchar_t path[MAX_PATH] = {};
    const HMODULE core = GetModuleHandleW(L"coredll.dll");
    if (core == nullptr) {
        GetSystemDirectoryW(path, MAX_PATH);
        return std::wstring(path) + L"\\KavrelCE.dll";
    }
    GetModuleFileNameW(core, path, MAX_PATH);
    const std::wstring text(path);
    return text.substr(0, text.rfind(L'\\') + 1) + L"KavrelCE.dll";
}

class RegistrationTest : public AutomationTest {
  protected:
    static constexpr wchar_t kUsageKey[] = L"Software\\Apps\\Shared";

    void SetUp() override {
        AutomationTest::SetUp();
        ClearUsage();
        ASSERT_EQ(S_OK, RegisterServer());
    }
    void TearDown() override {
        ClearUsage();
        EXPECT_EQ(S_OK, RegisterServer());
        AutomationTest::TearDown();
    }

    static void SetUsage(DWORD type, const void* data, DWORD size,
                         const std::wstring& name = UsageName()) {
        ASSERT_EQ(ERROR_SUCCESS,
                  RegSetKeyValueW(HKEY_CLASSES_ROOT, kUsageKey, name.c_str(), type, data, size));
    }
    static void SetUsageCount(DWORD count) { SetUsage(REG_DWORD, &count, sizeof count); }

    static void ClearUsage() { RegDeleteTreeW(HKEY_CLASSES_ROOT, L"Software\\Apps"); }
};

// Texts by "key path|value name"; each key has at least its own, with an empty name.
using Snapshot = std::map<std::string, std::string>;

std::string Text(REFGUID id) {
    wchar_t text[39];
    StringFromGUID2(id, text, 39);
    return Narrow(text);
}

std::string ModulePath() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(LoadedLibrary(), path, MAX_PATH);
    return Narrow(path);
}

// The key and what is below it, of the classes root.
void Collect(const std::string& path, Snapshot& snapshot) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
    snapshot[path + "|"] = "";
    char name[256];
    char text[1024];
    for (DWORD i = 0;; ++i) {
        DWORD length = sizeof name;
        DWORD size = sizeof text;
        DWORD type = 0;
        if (RegEnumValueA(key, i, name, &length, nullptr, &type, reinterpret_cast<BYTE*>(text),
                          &size) != ERROR_SUCCESS) {
            break;
        }
        snapshot[path + "|" + name] = type == REG_SZ ? std::string(text, size - 1) : "no text";
    }
    for (DWORD i = 0; RegEnumKeyA(key, i, name, 256) == ERROR_SUCCESS; ++i)
        Collect(path + "\\" + name, snapshot);
    RegCloseKey(key);
}

// Every key of the classes root whose name or class could be the library's.
Snapshot TakeSnapshot() {
    Snapshot snapshot;
    char name[256];
    for (DWORD i = 0; RegEnumKeyA(HKEY_CLASSES_ROOT, i, name, 256) == ERROR_SUCCESS; ++i) {
        if (std::string_view(name).starts_with("KavrelCE")) Collect(name, snapshot);
    }
    for (const CLSID& id :
         {CLSID_NmeaParser, CLSID_Position, CLSID_CustomGrid, CLSID_CustomDatum, CLSID_NmeaSentence,
          CLSID_NmeaGGA, CLSID_NmeaGLL, CLSID_NmeaRMC, CLSID_Satellites, CLSID_Satellite,
          CLSID_Movement, CLSID_Quality, CLSID_GpsFix, CLSID_ComStatus}) {
        Collect("CLSID\\" + Text(id), snapshot);
    }
    for (const char* category :
         {"{7DD95801-9882-11CF-9FA9-00AA006C42C4}", "{7DD95802-9882-11CF-9FA9-00AA006C42C4}"}) {
        Collect(std::string("Component Categories\\") + category, snapshot);
    }
    return snapshot;
}

std::string Filled(std::string text, const CreatableClass& creatable) {
    const std::pair<std::string_view, std::string> kPlaceholders[] = {
        {"{class}", Narrow(creatable.name)},
        {"{id}", Text(creatable.classId)},
        {"{library}", Text(LIBID_KavrelCE)},
        {"{module}", ModulePath()}};
    for (const auto& [placeholder, value] : kPlaceholders) {
        for (size_t at; (at = text.find(placeholder)) != std::string::npos;)
            text.replace(at, placeholder.size(), value);
    }
    return text;
}

// The registry holds the table's rows and nothing else; unregistered, only those of the system.
void ExpectKeys(bool isRegistered) {
    Snapshot found = TakeSnapshot();
    for (const TableRow& row : ReadTable("registration/keys.csv")) {
        const std::string classes = row[0];
        if (classes == "classes" || (classes != "system" && !isRegistered)) continue;
        for (const CreatableClass& creatable : CreatableClasses()) {
            const bool isFree = creatable.ProgId().find(L"Custom") != std::wstring::npos;
            if (classes == (isFree ? "safe" : "free")) continue;
            const auto entry = found.extract(Filled(row[1] + "|" + row[2], creatable));
            EXPECT_EQ(Filled(row[3], creatable), entry ? entry.mapped() : "nothing")
                << row.where << ", " << Narrow(creatable.name);
            if (classes == "system") break;
        }
    }
    EXPECT_THAT(found, testing::IsEmpty());
}

// Where the type library is registered; empty when it is not.
std::string TypeLibraryPath() {
    BSTR path = nullptr;
    if (QueryPathOfRegTypeLib(LIBID_KavrelCE, 1, 0, 0, &path) != S_OK) return {};
    // The platform counts the terminator as a part of it.
    const std::string text = Narrow(path);
    SysFreeString(path);
    return text;
}

// Something that is no part of this version in the parser's key.
void SetForeignValue() {
    const std::string path = "CLSID\\" + Text(CLSID_NmeaParser) + "\\Old\\Older";
    ASSERT_EQ(ERROR_SUCCESS, RegSetKeyValueA(HKEY_CLASSES_ROOT, path.c_str(), "x", REG_SZ, "y", 2));
}

TEST_F(RegistrationTest, WritesExactlyItsKeys) {
    ExpectKeys(true);
    SetForeignValue();
    EXPECT_EQ(S_OK, RegisterServer());
    ExpectKeys(true);

    EXPECT_EQ(ModulePath(), TypeLibraryPath());
    Snapshot library;
    Collect("TypeLib\\" + Text(LIBID_KavrelCE) + "\\1.0\\HELPDIR", library);
    EXPECT_EQ(ModulePath().substr(0, ModulePath().rfind('\\')), library.begin()->second);
}

HRESULT WINAPI LoadFromBeside(const OLECHAR* path, ITypeLib** library) {
    std::wstring text(path);
    if (!text.ends_with(L".tlb")) return TYPE_E_CANTLOADLIBRARY;
    return LoadTypeLib(text.replace(text.size() - 4, 4, L".dll").c_str(), library);
}

TEST_F(RegistrationTest, TypeLibraryMayStandBesideTheModule) {
    const ImportHook hook("LoadTypeLib", LoadFromBeside);
    EXPECT_EQ(S_OK, RegisterServer());
    EXPECT_EQ(ModulePath().replace(ModulePath().rfind('.'), 4, ".tlb"), TypeLibraryPath());
}

// Only a count of exactly 1, as a number, means that nobody else needs the library.
TEST_F(RegistrationTest, OtherCountsRemoveNothing) {
    const ULONGLONG one = 1;
    const DWORD kOthers[] = {0, 2, 0x101};
    const struct {
        DWORD type;
        const void* data;
        DWORD size;
        std::wstring name = UsageName();
    } counts[] = {
        {REG_DWORD, &one, 4, L"KavrelCE.dll"},
        {REG_DWORD, &one, 4, L""},
        {REG_DWORD, &kOthers[0], 4},
        {REG_DWORD, &kOthers[1], 4},
        {REG_DWORD, &kOthers[2], 4},
        {REG_SZ, L"\1", 4},
        {REG_QWORD, &one, 8},
    };
    EXPECT_EQ(S_OK, UnregisterServer()) << "no count";
    ExpectKeys(true);
    for (const auto& count : counts) {
        SCOPED_TRACE(&count - counts);
        SetUsage(count.type, count.data, count.size, count.name);
        EXPECT_EQ(S_OK, UnregisterServer());
        ExpectKeys(true);
        EXPECT_NE("", TypeLibraryPath());
    }
}

// The class keys go whole, with what others have put into them. What a client holds still works,
// but its errors have no source.
TEST_F(RegistrationTest, LastUserRemovesEverythingMarked) {
    const ComPtr<IDispatch> parser = CreateParser();
    SetForeignValue();
    SetUsageCount(1);
    EXPECT_EQ(S_OK, UnregisterServer());
    ExpectKeys(false);
    EXPECT_EQ("", TypeLibraryPath());
    EXPECT_FALSE(CreateParser());
    ExpectSteps(parser.Get(), {{L"=GpsDatum", {0}, "80042713 Unknown datum!"}});

    EXPECT_EQ(S_OK, UnregisterServer()) << "again, with nothing left";
    ExpectKeys(false);
    EXPECT_EQ(S_OK, RegisterServer());
    ExpectKeys(true);
    EXPECT_TRUE(CreateParser());
}

constexpr LSTATUS kDenied = ERROR_ACCESS_DENIED;
constexpr HRESULT kNoTypeLibrary = TYPE_E_CANTLOADLIBRARY;

// Registers or unregisters while each call of a function fails in turn: alternately it alone and
// all from there on, for the classes' scripts are alike.
template <typename Function>
void ExpectResult(HRESULT expected, HRESULT run(), const char* name, auto failure) {
    bool hasFailed = true;
    for (int n = 1; hasFailed; ++n) {
        if (run == UnregisterServer) RegisterServer();
        const Failing failing = n % 2 != 0 ? Failing::FromThenOn : Failing::Once;
        const FailingImport<Function> fault(name, n, failure, failing);
        const HRESULT result = run();
        hasFailed = fault.HasFailed();
        EXPECT_EQ(hasFailed ? expected : S_OK, result) << name << ", call " << n;
        EXPECT_TRUE(hasFailed || n > 1) << name << " is never called";
    }
}

TEST_F(RegistrationTest, FirstFailureIsReturned) {
    const auto run = RegisterServer;
    ExpectResult<decltype(RegCreateKeyExW)>(E_ACCESSDENIED, run, "RegCreateKeyExW", kDenied);
    ExpectResult<decltype(RegOpenKeyExW)>(E_ACCESSDENIED, run, "RegOpenKeyExW", kDenied);
    ExpectResult<decltype(RegSetValueExW)>(E_ACCESSDENIED, run, "RegSetValueExW", kDenied);
    ExpectResult<decltype(RegDeleteKeyW)>(E_ACCESSDENIED, run, "RegDeleteKeyW", kDenied);
    ExpectResult<decltype(RegisterTypeLib)>(TYPE_E_REGISTRYACCESS, run, "RegisterTypeLib",
                                            TYPE_E_REGISTRYACCESS);
    ExpectResult<decltype(LoadTypeLib)>(kNoTypeLibrary, run, "LoadTypeLib", kNoTypeLibrary);
}

TEST_F(RegistrationTest, UnregisteringNeverFails) {
    SetUsageCount(1);
    const auto run = UnregisterServer;
    ExpectResult<decltype(RegOpenKeyExW)>(S_OK, run, "RegOpenKeyExW", kDenied);
    ExpectResult<decltype(RegQueryValueExW)>(S_OK, run, "RegQueryValueExW", kDenied);
    ExpectResult<decltype(RegEnumKeyExW)>(S_OK, run, "RegEnumKeyExW", kDenied);
    ExpectResult<decltype(RegDeleteKeyW)>(S_OK, run, "RegDeleteKeyW", kDenied);
    ExpectResult<decltype(LoadTypeLib)>(S_OK, run, "LoadTypeLib", kNoTypeLibrary);
}

// Our own tables serve all but what only the type library knows. Once it was loaded it is kept, so
// this is the only test of the program that asks an object for it.
TEST_F(RegistrationTest, ObjectsWorkWithoutATypeLibrary) {
    const ComPtr<IDispatch> datum = CreateDirectly(CLSID_CustomDatum);
    ASSERT_TRUE(datum);
    wchar_t member[] = L"EventInterval";
    wchar_t argument[] = L"Interval";
    LPOLESTR names[] = {member, argument};
    DISPID ids[2] = {};
    {
        const FailingImport<decltype(LoadTypeLib)> missing("LoadTypeLib", 1, kNoTypeLibrary,
                                                           Failing::FromThenOn);
        EXPECT_EQ(S_OK, Put(datum.Get(), L"SemiMajorAxis", 2.5).status);
        EXPECT_EQ("R8 2.5", Describe(Get(datum.Get(), L"SemiMajorAxis").value));

        ITypeInfo* type = nullptr;
        EXPECT_EQ(kNoTypeLibrary, datum->GetTypeInfo(0, LOCALE_USER_DEFAULT, &type));
        EXPECT_EQ(nullptr, type);
        const ComPtr<IDispatch> parser = CreateParser();
        ComPtr<IProvideClassInfo> information;
        ASSERT_EQ(S_OK,
                  parser->QueryInterface(IID_IProvideClassInfo,
                                         reinterpret_cast<void**>(information.GetAddressOf())));
        EXPECT_EQ(kNoTypeLibrary, information->GetClassInfo(&type));
        EXPECT_EQ(nullptr, type);
        EXPECT_EQ(kNoTypeLibrary,
                  parser->GetIDsOfNames(IID_NULL, names, 2, LOCALE_USER_DEFAULT, ids));
        const Arguments byNumber{{5, 100}, {1, 0}};
        EXPECT_EQ(S_OK, InvokeById(parser.Get(), 15, DISPATCH_METHOD, byNumber).status);
        EXPECT_TRUE(missing.HasFailed());
    }
    const ComPtr<IDispatch> parser = CreateParser();
    EXPECT_EQ(S_OK, parser->GetIDsOfNames(IID_NULL, names, 2, LOCALE_USER_DEFAULT, ids));
}

}  // namespace

}  // namespace kavrel::tests
