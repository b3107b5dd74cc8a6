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

constexpr HRESULT kNoTypeLibrary = TYPE_E_CANTLOADLIBRARY;

// Registers while each call of a function fails in turn.
template <typename Function>
void ExpectTheFirstFailure(const char* name, auto failure, HRESULT expected, Failing failing) {
    for (int n = 1;; ++n) {
        const FailingImport<Function> fault(name, n, failure, failing);
        const HRESULT result = RegisterServer();
        if (!fault.HasFailed()) {
            EXPECT_EQ(S_OK, result);
            EXPECT_LT(1, n) << name << " is never called";
            return;
        }
        EXPECT_EQ(expected, result) << name << ", call " << n;
    }
}

TEST_F(RegistrationFaultTest, FirstFailureIsReturned) {
    constexpr LSTATUS kDenied = ERROR_ACCESS_DENIED;
    constexpr HRESULT kExpected = E_ACCESSDENIED;
    for (const Failing failing : {Failing::Once, Failing::FromThenOn}) {
        ExpectTheFirstFailure<decltype(RegCreateKeyExW)>("RegCreateKeyExW", kDenied, kExpected,
                                                         failing);
        ExpectTheFirstFailure<decltype(RegOpenKeyExW)>("RegOpenKeyExW", kDenied, kExpected,
                                                       failing);
        ExpectTheFirstFailure<decltype(RegSetValueExW)>("RegSetValueExW", kDenied, kExpected,
                                                        failing);
        ExpectTheFirstFailure<decltype(RegDeleteKeyW)>("RegDeleteKeyW", kDenied, kExpected,
                                                       failing);
        ExpectTheFirstFailure<decltype(RegisterTypeLib)>("RegisterTypeLib", TYPE_E_REGISTRYACCESS,
                                                         TYPE_E_REGISTRYACCESS, failing);
    }
    ExpectTheFirstFailure<decltype(LoadTypeLib)>("LoadTypeLib", kNoTypeLibrary, kNoTypeLibrary,
                                                 Failing::FromThenOn);
}

// Unregisters while each call of a function fails in turn: it always ends, and says nothing.
template <typename Function>
void ExpectQuiet(const char* name, auto failure) {
    for (const Failing failing : {Failing::Once, Failing::FromThenOn}) {
        for (int n = 1;; ++n) {
            ASSERT_EQ(S_OK, RegisterServer());
            const FailingImport<Function> fault(name, n, failure, failing);
            EXPECT_EQ(S_OK, UnregisterServer()) << name << ", call " << n;
            if (fault.HasFailed()) continue;
            EXPECT_LT(1, n) << name << " is never called";
            break;
        }
    }
}

TEST_F(RegistrationFaultTest, UnregisteringNeverFails) {
    SetUsageCount(1);
    constexpr LSTATUS kDenied = ERROR_ACCESS_DENIED;
    ExpectQuiet<decltype(RegOpenKeyExW)>("RegOpenKeyExW", kDenied);
    ExpectQuiet<decltype(RegQueryValueExW)>("RegQueryValueExW", kDenied);
    ExpectQuiet<decltype(RegEnumKeyExW)>("RegEnumKeyExW", kDenied);
    ExpectQuiet<decltype(RegDeleteKeyW)>("RegDeleteKeyW", kDenied);
    ExpectQuiet<decltype(LoadTypeLib)>("LoadTypeLib", kNoTypeLibrary);
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
