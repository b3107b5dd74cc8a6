// CustomDatum and CustomGrid between apartments, which the platform activates as free-threaded.
#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "KavrelCE_h.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"
#include "automation/support/positions.h"
#include "automation/support/steps.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

ComPtr<IDispatch> NewDatum() {
    return CreateByName(L"KavrelCE.CustomDatum");
}
ComPtr<IDispatch> NewGrid() {
    return CreateByName(L"KavrelCE.CustomGrid");
}

using ApartmentTest = AutomationTest;

// Runs something on a thread of its own, in the multithreaded apartment.
void InMultithreadedApartment(const std::function<void()>& action) {
    std::thread([&action] {
        ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
        action();
        CoUninitialize();
    }).join();
}

// An object on its way between two apartments.
class Parcel {
  public:
    void Send(IDispatch* object) {
        EXPECT_EQ(S_OK, CoMarshalInterThreadInterfaceInStream(IID_IDispatch, object, &stream_));
    }
    ComPtr<IDispatch> Receive() {
        ComPtr<IDispatch> object;
        EXPECT_EQ(S_OK,
                  CoGetInterfaceAndReleaseStream(stream_, IID_PPV_ARGS(object.GetAddressOf())));
        return object;
    }

  private:
    IStream* stream_ = nullptr;
};

// Both classes are free-threaded: everybody holds the object itself, and a position reaches the
// values in it wherever it was made.
TEST_F(ApartmentTest, MadeInAnotherApartment) {
    Parcel parcels[2];
    IUnknown* made[2] = {};
    InMultithreadedApartment([&] {
        const ComPtr<IDispatch> objects[] = {NewDatum(), NewGrid()};
        for (int i = 0; i < 2; ++i) {
            made[i] = objects[i].Get();
            parcels[i].Send(objects[i].Get());
        }
    });
    const ComPtr<IDispatch> datum = parcels[0].Receive();
    const ComPtr<IDispatch> grid = parcels[1].Receive();
    EXPECT_EQ(made[0], datum.Get());
    EXPECT_EQ(made[1], grid.Get());
    const ComPtr<IDispatch> p = NewPosition();
    ExpectSteps(p.Get(), {{L"&CustomGrid", {grid.Get()}, ""},
                          {L"&CustomDatum", {datum.Get()}, ""},
                          {L"Grid", {}, "I2 52"},
                          {L"Datum", {}, "I2 28"}});
    ExpectSteps(grid.Get(), {{L"&CustomDatum", {datum.Get()}, ""},
                             {L"&CustomDatum",
                              {grid.Get()},
                              "80004002 Parameter not a valid object! (CustomGrid Class)"}});
}

TEST_F(ApartmentTest, UsedInAnotherApartment) {
    Parcel parcel;
    const ComPtr<IDispatch> datum = NewDatum();
    parcel.Send(datum.Get());
    InMultithreadedApartment([&] {
        const ComPtr<IDispatch> here = parcel.Receive();
        EXPECT_EQ(datum.Get(), here.Get());
        const ComPtr<IDispatch> grid = NewGrid();
        ExpectSteps(grid.Get(), {{L"&CustomDatum", {here.Get()}, ""}});
        ExpectSteps(here.Get(), {{L"=DeltaX", {99}, ""}});
        // The error object belongs to this thread.
        ComPtr<ICustomGrid> dual;
        ASSERT_EQ(S_OK, grid.As(&dual));
        EXPECT_EQ(E_NOINTERFACE, dual->putref_CustomDatum(*Var(5).get()));
        EXPECT_TRUE(TakeErrorObject().has_value());
    });
    EXPECT_FALSE(TakeErrorObject().has_value());
    ExpectSteps(datum.Get(), {{L"DeltaX", {}, "R8 99"}});
}

}  // namespace

}  // namespace kavrel::tests
