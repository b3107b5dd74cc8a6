// A registry that refuses, and a type library that is not there.
//
// The test leaves the library registered, as it found it.
#include <gtest/gtest.h>
#include <ocidl.h>
#include <oleauto.h>

#include "KavrelCE_h.h"
#include "automation/support/failing_import.h"
#include "automation/support/late_call.h"
#include "automation/support/registration_fixture.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

using RegistrationFaultTest = RegistrationTest;

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

TEST_F(RegistrationFaultTest, FirstFailureIsReturned) {
    const auto run = RegisterServer;
    ExpectResult<decltype(RegCreateKeyExW)>(E_ACCESSDENIED, run, "RegCreateKeyExW", kDenied);
    ExpectResult<decltype(RegOpenKeyExW)>(E_ACCESSDENIED, run, "RegOpenKeyExW", kDenied);
    ExpectResult<decltype(RegSetValueExW)>(E_ACCESSDENIED, run, "RegSetValueExW", kDenied);
    ExpectResult<decltype(RegDeleteKeyW)>(E_ACCESSDENIED, run, "RegDeleteKeyW", kDenied);
    ExpectResult<decltype(RegisterTypeLib)>(TYPE_E_REGISTRYACCESS, run, "RegisterTypeLib",
                                            TYPE_E_REGISTRYACCESS);
    ExpectResult<decltype(LoadTypeLib)>(kNoTypeLibrary, run, "LoadTypeLib", kNoTypeLibrary);
}

TEST_F(RegistrationFaultTest, UnregisteringNeverFails) {
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
TEST_F(RegistrationFaultTest, ObjectsWorkWithoutATypeLibrary) {
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
