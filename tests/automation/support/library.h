// The library under test as a client meets it: its classes by name, its exports, and whether it
// lets go of everything.
#pragma once

#include <gtest/gtest.h>
#include <oaidl.h>
#include <wrl/client.h>

#include <span>
#include <string>

namespace kavrel::tests {

// A class that clients create.
struct CreatableClass {
    const wchar_t* name;  // as in "KavrelCE.<name>"
    const CLSID& classId;
    const IID& interfaceId;

    std::wstring ProgId() const { return std::wstring(L"KavrelCE.") + name; }
};
std::span<const CreatableClass> CreatableClasses();

// Prints the class when a test of it fails.
void PrintTo(const CreatableClass& creatable, std::ostream* out);

// The DLL, loaded by its path; COM uses the same module once it is registered from there.
// Stays loaded as long as the program.
HMODULE LoadedLibrary();

// DllGetClassObject, DllCanUnloadNow, DllRegisterServer and DllUnregisterServer of the DLL.
HRESULT GetClassObjectOf(REFCLSID classId, REFIID interfaceId, void** object);
HRESULT CanUnloadNow();
HRESULT RegisterServer();
HRESULT UnregisterServer();

// A new object by ProgID, as a script makes one. Null when that fails.
Microsoft::WRL::ComPtr<IDispatch> CreateByName(const std::wstring& progId);

// A new object without the platform's activation, which may give a proxy of an object of a
// free-threaded class, or makes an apartment for it. Null when that fails.
Microsoft::WRL::ComPtr<IDispatch> CreateDirectly(REFCLSID classId);

inline Microsoft::WRL::ComPtr<IDispatch> CreateParser() {
    return CreateByName(L"KavrelCE.NmeaParser");
}

// Fixture: COM is there, in an apartment, and at its end the test has released all objects.
class AutomationTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;
};

}  // namespace kavrel::tests
