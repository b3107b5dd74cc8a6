// What the objects that events bring show only to compiled clients; the rest is in the table
// tests/data/automation/results.txt, and in tests/scripts/events.vbs which events a sentence
// raises.
#include <gtest/gtest.h>

#include <string>

#include "KavrelCE_h.h"
#include "automation/support/event_recorder.h"
#include "automation/support/every_class.h"
#include "automation/support/late_call.h"
#include "automation/support/steps.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

using ResultTest = ParserTest;

// The time of a sentence without one: the caller's variant stays as it is.
TEST_F(ResultTest, NoTimeLeavesTheVariantAlone) {
    ComPtr<IGpsFix> fix;
    const ComPtr<IDispatch> object =
        LastObjectOf(parser_.Get(), kOnGpsFix, L"$GPGGA,123520,,,,,0,,,,,,,,\r\n");
    ASSERT_EQ(S_OK, object.As(&fix));
    Var result = L"as before";
    EXPECT_EQ(S_OK, fix->get_UTC(result.get()));
    EXPECT_EQ("BSTR 'as before'", Describe(result));
}

TEST_F(ResultTest, SatellitesOneByOne) {
    const ComPtr<IDispatch> satellites =
        LastObjectOf(parser_.Get(), kOnSatellites, L"$GPGSV,1,1,03,11,,,,12,,,,13,,,\r\n");
    const CallResult call =
        InvokeById(satellites.Get(), DISPID_NEWENUM, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {});
    ASSERT_EQ(VT_UNKNOWN, call.value.type());
    ComPtr<IEnumVARIANT> items;
    ASSERT_EQ(S_OK, V_UNKNOWN(call.value.get())->QueryInterface(IID_PPV_ARGS(&items)));

    const auto next = [](const ComPtr<IEnumVARIANT>& from) {
        Var item;
        const HRESULT status = from->Next(1, item.get(), nullptr);
        return status == S_OK ? Outcome(Get(item.object(), L"ID")) : std::to_string(status);
    };
    EXPECT_EQ("I2 11", next(items));
    ComPtr<IEnumVARIANT> clone;
    ASSERT_EQ(S_OK, items->Clone(&clone));
    EXPECT_EQ(S_OK, items->Skip(1));
    EXPECT_EQ("I2 13", next(items));
    EXPECT_EQ("1", next(items));
    EXPECT_EQ("I2 12", next(clone));
    EXPECT_EQ(S_FALSE, clone->Skip(2));
    EXPECT_EQ("1", next(clone));
    EXPECT_EQ(S_OK, items->Reset());
    VARIANT all[4];
    ULONG fetched = 0;
    EXPECT_EQ(S_FALSE, items->Next(4, all, &fetched));
    ASSERT_EQ(3U, fetched);
    EXPECT_EQ("I2 13", Outcome(Get(V_DISPATCH(&all[2]), L"ID")));
    for (ULONG i = 0; i < fetched; ++i)
        VariantClear(&all[i]);
}

}  // namespace

}  // namespace kavrel::tests
