// Registration: exactly which keys and values DllRegisterServer writes, and when
// DllUnregisterServer takes them back.
//
// The test leaves the library registered, as it found it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ole2.h>

#include <array>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "KavrelCE_h.h"
#include "automation/support/import_hook.h"
#include "automation/support/registration_fixture.h"
#include "automation/support/steps.h"

namespace kavrel::tests {

namespace {

constexpr const char* kTable = KAVREL_TEST_DATA "/registration/keys.csv";

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
    std::ifstream file(kTable);
    EXPECT_TRUE(file) << kTable;
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        if (line.starts_with('#') || line.starts_with("classes,")) continue;
        std::array<std::string, 4> fields;  // classes, key, value, text
        std::istringstream stream(line);
        for (std::string& field : fields)
            std::getline(stream, field, ',');
        const auto& [classes, key, value, text] = fields;
        if (!isRegistered && classes != "system") continue;
        for (const CreatableClass& creatable : CreatableClasses()) {
            const bool isFree = creatable.ProgId().find(L"Custom") != std::wstring::npos;
            if (classes == (isFree ? "safe" : "free")) continue;
            const auto row = found.extract(Filled(key + "|" + value, creatable));
            EXPECT_EQ(Filled(text, creatable), row ? row.mapped() : "nothing")
                << kTable << ":" << number << ", " << Narrow(creatable.name);
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

// The class keys go whole, with what others have put into them.
TEST_F(RegistrationTest, LastUserRemovesEverythingMarked) {
    SetForeignValue();
    SetUsageCount(1);
    EXPECT_EQ(S_OK, UnregisterServer());
    ExpectKeys(false);
    EXPECT_EQ("", TypeLibraryPath());
    EXPECT_FALSE(CreateParser());

    EXPECT_EQ(S_OK, UnregisterServer()) << "again, with nothing left";
    ExpectKeys(false);
    EXPECT_EQ(S_OK, RegisterServer());
    ExpectKeys(true);
    EXPECT_TRUE(CreateParser());
}

// A class that is no longer registered has no source in its errors, and works.
TEST_F(RegistrationTest, LiveObjectsOutliveTheRegistration) {
    const Microsoft::WRL::ComPtr<IDispatch> parser = CreateParser();
    SetUsageCount(1);
    EXPECT_EQ(S_OK, UnregisterServer());
    ExpectSteps(parser.Get(), {{L"=GpsDatum", {0}, "80042713 Unknown datum!"}});
}

}  // namespace

}  // namespace kavrel::tests
