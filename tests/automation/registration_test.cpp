// Registration: exactly which keys and values DllRegisterServer writes, and when
// DllUnregisterServer takes them back.
//
// The test leaves the library registered, as it found it.
#include <gtest/gtest.h>
#include <ole2.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "KavrelCE_h.h"
#include "automation/support/library.h"
#include "automation/support/registration_fixture.h"
#include "automation/support/var.h"

namespace kavrel::tests {

namespace {

// Values by "key path|value name"; a key without values stands as "key path|" with an empty text.
using Snapshot = std::map<std::wstring, std::wstring>;

constexpr wchar_t kSafeForScripting[] = L"{7DD95801-9882-11CF-9FA9-00AA006C42C4}";
constexpr wchar_t kSafeForInitializing[] = L"{7DD95802-9882-11CF-9FA9-00AA006C42C4}";

std::wstring Text(REFGUID id) {
    wchar_t text[39];
    StringFromGUID2(id, text, 39);
    return text;
}

std::wstring ModulePath() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(LoadedLibrary(), path, MAX_PATH);
    return path;
}

// A registry key of the classes root, open for a scope.
class Key {
  public:
    explicit Key(const std::wstring& path) {
        if (RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key_) != ERROR_SUCCESS) {
            key_ = nullptr;
        }
    }
    ~Key() {
        if (key_ != nullptr) RegCloseKey(key_);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    bool Exists() const { return key_ != nullptr; }

    std::vector<std::wstring> Subkeys() const {
        std::vector<std::wstring> names;
        wchar_t name[256];
        DWORD length = 256;
        while (RegEnumKeyExW(key_, static_cast<DWORD>(names.size()), name, &length, nullptr,
                             nullptr, nullptr, nullptr) == ERROR_SUCCESS) {
            names.emplace_back(name, length);
            length = 256;
        }
        return names;
    }

    // Texts as they are, values of other types as "type <number>".
    std::map<std::wstring, std::wstring> Values() const {
        std::map<std::wstring, std::wstring> values;
        wchar_t name[256];
        wchar_t text[1024];
        for (DWORD i = 0;; ++i) {
            DWORD nameLength = 256;
            DWORD size = sizeof text;
            DWORD type = 0;
            if (RegEnumValueW(key_, i, name, &nameLength, nullptr, &type,
                              reinterpret_cast<BYTE*>(text), &size) != ERROR_SUCCESS) {
                return values;
            }
            const size_t length = size / sizeof(wchar_t);
            values[name] = type == REG_SZ ? std::wstring(text, length > 0 ? length - 1 : 0)
                                          : L"type " + std::to_wstring(type);
        }
    }

  private:
    HKEY key_ = nullptr;
};

bool Exists(const std::wstring& path) {
    return Key(path).Exists();
}

void Collect(const std::wstring& path, Snapshot* snapshot) {
    const Key key(path);
    if (!key.Exists()) return;
    const auto values = key.Values();
    if (!values.contains(L"")) (*snapshot)[path + L"|"] = L"";
    for (const auto& [name, text] : values)
        (*snapshot)[path + L"|" + name] = text;
    for (const std::wstring& name : key.Subkeys())
        Collect(path + L"\\" + name, snapshot);
}

// Every key of the classes root whose name or class could be the library's.
Snapshot TakeSnapshot() {
    Snapshot snapshot;
    for (const std::wstring& name : Key(L"").Subkeys()) {
        if (name.starts_with(L"KavrelCE")) Collect(name, &snapshot);
    }
    for (const CreatableClass& creatable : CreatableClasses()) {
        Collect(L"CLSID\\" + Text(creatable.classId), &snapshot);
    }
    for (const CLSID& other :
         {CLSID_NmeaSentence, CLSID_NmeaGGA, CLSID_NmeaGLL, CLSID_NmeaRMC, CLSID_Satellites,
          CLSID_Satellite, CLSID_Movement, CLSID_Quality, CLSID_GpsFix, CLSID_ComStatus}) {
        Collect(L"CLSID\\" + Text(other), &snapshot);
    }
    Collect(std::wstring(L"Component Categories\\") + kSafeForScripting, &snapshot);
    Collect(std::wstring(L"Component Categories\\") + kSafeForInitializing, &snapshot);
    return snapshot;
}

// What is to be there for one class.
void AddClass(const CreatableClass& creatable, Snapshot* snapshot) {
    const std::wstring id = Text(creatable.classId);
    const std::wstring progId = creatable.ProgId();
    const std::wstring description = creatable.Description();
    const std::wstring root = L"CLSID\\" + id;
    Snapshot& all = *snapshot;
    all[progId + L".1|"] = description;
    all[progId + L".1\\CLSID|"] = id;
    all[progId + L"|"] = description;
    all[progId + L"\\CLSID|"] = id;
    all[progId + L"\\CurVer|"] = progId + L".1";
    all[root + L"|"] = description;
    all[root + L"\\ProgID|"] = progId + L".1";
    all[root + L"\\VersionIndependentProgID|"] = progId;
    all[root + L"\\Programmable|"] = L"";
    all[root + L"\\InprocServer32|"] = ModulePath();
    all[root + L"\\TypeLib|"] = Text(LIBID_KavrelCE);

    const std::wstring name = creatable.name;
    if (name == L"CustomGrid" || name == L"CustomDatum") {
        all[root + L"\\InprocServer32|ThreadingModel"] = L"Free";
    }
    if (name == L"Position" || name == L"NmeaParser") {
        all[root + L"\\Implemented Categories|"] = L"";
        all[root + L"\\Implemented Categories\\" + kSafeForScripting + L"|"] = L"";
        all[root + L"\\Implemented Categories\\" + kSafeForInitializing + L"|"] = L"";
    }
}

void AddCategories(Snapshot* snapshot) {
    const std::wstring root = L"Component Categories\\";
    for (const wchar_t* category : {kSafeForScripting, kSafeForInitializing}) {
        (*snapshot)[root + category + L"|"] = L"";
    }
    (*snapshot)[root + kSafeForScripting + L"|409"] = L"Controls that are safely scriptable";
    (*snapshot)[root + kSafeForInitializing + L"|409"] =
        L"Controls safely initializable from persistent data";
}

Snapshot Registered() {
    Snapshot snapshot;
    for (const CreatableClass& creatable : CreatableClasses())
        AddClass(creatable, &snapshot);
    AddCategories(&snapshot);
    return snapshot;
}

Snapshot Unregistered() {
    Snapshot snapshot;
    AddCategories(&snapshot);
    return snapshot;
}

// Where the type library is registered; nothing when it is not.
std::optional<std::wstring> TypeLibraryPath() {
    BSTR path = nullptr;
    if (QueryPathOfRegTypeLib(LIBID_KavrelCE, 1, 0, 0, &path) != S_OK) return std::nullopt;
    // The platform counts the terminator as a part of it.
    std::wstring text(path);
    SysFreeString(path);
    return text;
}

TEST_F(RegistrationTest, WritesExactlyItsKeys) {
    EXPECT_EQ(Registered(), TakeSnapshot());
}

TEST_F(RegistrationTest, RegisteringTwiceChangesNothing) {
    EXPECT_EQ(S_OK, RegisterServer());
    EXPECT_EQ(Registered(), TakeSnapshot());
}

// What an older version left in its key is no part of this one.
TEST_F(RegistrationTest, RegisteringCleansTheClassKeys) {
    const std::wstring stale = L"CLSID\\" + Text(CLSID_NmeaParser) + L"\\Old\\Older";
    ASSERT_EQ(ERROR_SUCCESS,
              RegSetKeyValueW(HKEY_CLASSES_ROOT, stale.c_str(), L"x", REG_SZ, L"y", 4));
    EXPECT_EQ(S_OK, RegisterServer());
    EXPECT_EQ(Registered(), TakeSnapshot());
}

TEST_F(RegistrationTest, RegistersTheTypeLibrary) {
    ASSERT_TRUE(TypeLibraryPath().has_value());
    EXPECT_EQ(ModulePath(), *TypeLibraryPath());
    const std::wstring key = L"TypeLib\\" + Text(LIBID_KavrelCE) + L"\\1.0\\HELPDIR";
    const std::wstring module = ModulePath();
    EXPECT_EQ(module.substr(0, module.rfind(L'\\')), Key(key).Values()[L""]);
}

// Only a count of exactly 1, as a number, means that nobody else needs the library.
TEST_F(RegistrationTest, OtherCountsRemoveNothing) {
    const DWORD zero = 0;
    const DWORD two = 2;
    const DWORD one = 1;
    const DWORD many = 0x101;
    const ULONGLONG wide = 1;
    const struct {
        const char* what;
        DWORD type;
        const void* data;
        DWORD size;
    } counts[] = {
        {"0", REG_DWORD, &zero, sizeof zero},       {"2", REG_DWORD, &two, sizeof two},
        {"257", REG_DWORD, &many, sizeof many},     {"text", REG_SZ, L"1", 4},
        {"64 bits", REG_QWORD, &wide, sizeof wide},
    };
    EXPECT_EQ(S_OK, UnregisterServer()) << "no count";
    EXPECT_EQ(Registered(), TakeSnapshot());
    SetUsage(REG_DWORD, &one, sizeof one, L"KavrelCE.dll");
    SetUsage(REG_DWORD, &one, sizeof one, L"");
    EXPECT_EQ(S_OK, UnregisterServer()) << "counts under other names";
    EXPECT_EQ(Registered(), TakeSnapshot());
    for (const auto& count : counts) {
        SCOPED_TRACE(count.what);
        SetUsage(count.type, count.data, count.size);
        EXPECT_EQ(S_OK, UnregisterServer());
        EXPECT_EQ(Registered(), TakeSnapshot());
        EXPECT_TRUE(TypeLibraryPath().has_value());
    }
}

TEST_F(RegistrationTest, LastUserRemovesEverythingMarked) {
    SetUsageCount(1);
    EXPECT_EQ(S_OK, UnregisterServer());
    EXPECT_EQ(Unregistered(), TakeSnapshot());
    EXPECT_TRUE(Exists(L"CLSID"));
    EXPECT_TRUE(Exists(L"Component Categories"));
    EXPECT_EQ(std::nullopt, TypeLibraryPath());
    CLSID classId = {};
    EXPECT_EQ(CO_E_CLASSSTRING, CLSIDFromProgID(L"KavrelCE.NmeaParser", &classId));

    EXPECT_EQ(S_OK, UnregisterServer()) << "again, with nothing left";
    EXPECT_EQ(Unregistered(), TakeSnapshot());
    EXPECT_EQ(S_OK, RegisterServer());
    EXPECT_EQ(Registered(), TakeSnapshot());
    EXPECT_TRUE(CreateParser());
}

// The class key goes whole, with what others have put into it.
TEST_F(RegistrationTest, RemovesForeignSubkeysOfItsClasses) {
    const std::wstring foreign = L"CLSID\\" + Text(CLSID_NmeaParser) + L"\\TreatAs\\x";
    ASSERT_EQ(ERROR_SUCCESS,
              RegSetKeyValueW(HKEY_CLASSES_ROOT, foreign.c_str(), L"x", REG_SZ, L"y", 4));
    SetUsageCount(1);
    EXPECT_EQ(S_OK, UnregisterServer());
    EXPECT_EQ(Unregistered(), TakeSnapshot());
}

// A class that is no longer registered has no source in its errors, and works.
TEST_F(RegistrationTest, LiveObjectsOutliveTheRegistration) {
    const Microsoft::WRL::ComPtr<IDispatch> parser = CreateParser();
    SetUsageCount(1);
    EXPECT_EQ(S_OK, UnregisterServer());
    Microsoft::WRL::ComPtr<INmeaParser> direct;
    ASSERT_EQ(S_OK, parser.As(&direct));
    EXPECT_EQ(static_cast<HRESULT>(0x80042713), direct->put_GpsDatum(*Var(0).get()));
    Microsoft::WRL::ComPtr<IErrorInfo> error;
    ASSERT_EQ(S_OK, GetErrorInfo(0, &error));
    BSTR source = nullptr;
    error->GetSource(&source);
    EXPECT_EQ(nullptr, source);
}

}  // namespace

}  // namespace kavrel::tests
