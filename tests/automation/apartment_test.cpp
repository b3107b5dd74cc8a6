// CustomDatum and CustomGrid between apartments, which the platform activates as free-threaded.
#include <gtest/gtest.h>

#include <thread>

#include "KavrelCE_h.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"
#include "automation/support/positions.h"
#include "automation/support/steps.h"
#include "automation/support/var.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

using ApartmentTest = AutomationTest;

// Both classes are free-threaded: everybody holds the object itself, and a position reaches the
// values in it wherever it was made.
TEST_F(ApartmentTest, AnObjectOfAnotherApartmentIsNoProxy) {
    for (const std::wstring name : {L"Datum", L"Grid"}) {
        const void* made = nullptr;
        IStream* parcel = nullptr;
        std::thread([&] {
            ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
            ComPtr<IDispatch> object = CreateByName(L"KavrelCE.Custom" + name);
            made = object.Get();
            EXPECT_EQ(S_OK,
                      CoMarshalInterThreadInterfaceInStream(IID_IDispatch, object.Get(), &parcel));
            if (ComPtr<ICustomGrid> grid; SUCCEEDED(object.As(&grid))) {
                EXPECT_EQ(E_NOINTERFACE, grid->putref_CustomDatum(*Var(5).get()));
            }
            object.Reset();
            CoUninitialize();
        }).join();
        EXPECT_FALSE(TakeErrorObject().has_value()) << "the error object belongs to its thread";
        ComPtr<IDispatch> received;
        ASSERT_EQ(S_OK,
                  CoGetInterfaceAndReleaseStream(parcel, IID_PPV_ARGS(received.GetAddressOf())));
        EXPECT_EQ(made, received.Get());
        const std::wstring put = L"&Custom" + name;
        ExpectSteps(NewPosition().Get(), {{put.c_str(), {received.Get()}, ""},
                                          {name.c_str(), {}, name == L"Grid" ? "I2 52" : "I2 28"}});
    }
}

}  // namespace

}  // namespace kavrel::tests
