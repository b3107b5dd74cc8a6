// The shared-receiver source on a real COM object: the stand-in for the product.
#include "platform/win32/shared_receiver.h"

#include <gtest/gtest.h>
#include <ole2.h>

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "automation/support/shared_receiver_server.h"
#include "automation/support/var.h"
#include "base/library_lock.h"
#include "platform/win32/shared_receiver_ids.h"
#include "serial/shared_receiver_source.h"

namespace kavrel::tests {

namespace {

Ref<SharedReceiverSource> MakeSource() {
    return MakeRef<SharedReceiverSource>(MakePlatformSharedReceiver());
}

std::string Error(const SharedReceiverSource& source) {
    const ErrorSlot& error = source.error();
    if (!error.IsSet()) return "ok";
    return std::to_string(error.code()) + " " + std::string(error.text());
}

// What has come, and takes it: each text in brackets, "closed" when the receiver was closed.
std::string TakeAll(SharedReceiverSource& source) {
    std::string all;
    const bool isSignalled = source.DataReceivedEvent()->Wait(0);
    while (const Ref<ByteBlock> text = source.TakeText())
        all += "[" + std::string(text->bytes().begin(), text->bytes().end()) + "]";
    EXPECT_EQ(isSignalled, !all.empty());
    if (source.SourceClosedEvent()->Wait(0)) all += "closed";
    source.DataReceivedEvent()->Reset();
    source.SourceClosedEvent()->Reset();
    return all;
}

class SharedReceiverTest : public testing::Test {
  protected:
    // The library's sources are linked into this program, with a library lock of their own.
    static void SetUpTestSuite() { libraryLock.Create(); }

    void SetUp() override { ASSERT_TRUE(product_.IsThere()); }
    void TearDown() override {
        EXPECT_EQ(0, product_->objects());
        EXPECT_EQ(0, product_->sinks());
    }

    SharedReceiverServer product_;
};

TEST(SharedReceiver, IsReportedWhenItIsNotInstalled) {
    libraryLock.Create();
    const Ref<SharedReceiverSource> source = MakeSource();
    EXPECT_FALSE(source->Start());
    EXPECT_EQ("340 Ravelin not installed! Cannot create object RavelinApi::Simple", Error(*source));
}

// Connects, receives, disconnects and releases, on a thread with the given kind of COM or none.
void UseProduct(SharedReceiverServer& product, std::optional<DWORD> apartment) {
    if (apartment) CoInitializeEx(nullptr, *apartment);
    Ref<SharedReceiverSource> source = MakeSource();
    EXPECT_TRUE(source->Start()) << Error(*source);
    EXPECT_EQ(0, source->lastResult());
    EXPECT_EQ(1, product->objects());
    EXPECT_EQ(1, product->sinks());
    EXPECT_TRUE(source->CallMethod6(1)) << Error(*source);
    EXPECT_TRUE(source->CallMethod4()) << Error(*source);
    EXPECT_STREQ("6(1) 4() ", product->calls());

    product.RaiseText(L"$GPGGA,1\r\n");
    std::thread([&] { product.RaiseText(L"$GPRMC,2\r\n"); }).join();
    EXPECT_EQ("[$GPGGA,1\r\n][$GPRMC,2\r\n]", TakeAll(*source));

    source.Reset();
    EXPECT_EQ(0, product->objects());
    EXPECT_EQ(0, product->sinks());
    CoUninitialize();
}

TEST_F(SharedReceiverTest, DeliversWhateverApartmentItsClientIsIn) {
    const std::optional<DWORD> kApartments[] = {std::nullopt, COINIT_MULTITHREADED,
                                                COINIT_APARTMENTTHREADED};
    for (const std::optional<DWORD>& apartment : kApartments) {
        product_->Reset();
        std::thread([&] { UseProduct(product_, apartment); }).join();
    }
}

TEST_F(SharedReceiverTest, CallsTheMethodsByTheirPlace) {
    const Ref<SharedReceiverSource> source = MakeSource();
    ASSERT_TRUE(source->Start());
    EXPECT_TRUE(source->CallMethod1(-1));
    EXPECT_TRUE(source->CallMethod2(0x12345678));
    EXPECT_TRUE(source->CallMethod4());
    EXPECT_TRUE(source->CallMethod6(6));
    EXPECT_STREQ("1(-1) 2(305419896) 4() 6(6) ", product_->calls());
}

TEST_F(SharedReceiverTest, AFailingCallIsReportedWithTheProductsText) {
    const Ref<SharedReceiverSource> source = MakeSource();
    ASSERT_TRUE(source->Start());
    product_->Answer(6, MAKE_HRESULT(1, FACILITY_ITF, 0x1234), L"No receiver in range");
    EXPECT_FALSE(source->CallMethod6(1));
    EXPECT_EQ("4660 No receiver in range", Error(*source));
    EXPECT_TRUE(source->CallMethod4());
    EXPECT_EQ("ok", Error(*source));

    // What an earlier call has left does not belong to one that fails without a text.
    product_->Answer(4, S_FALSE, L"A note");
    EXPECT_TRUE(source->CallMethod4());
    EXPECT_EQ("ok", Error(*source));
    EXPECT_EQ(S_FALSE, source->lastResult());
    product_->Answer(2, E_FAIL, nullptr);
    EXPECT_FALSE(source->CallMethod2(1));
    EXPECT_EQ("16389 Unknown Error", Error(*source));
    product_->Answer(1, E_FAIL, L"");
    EXPECT_FALSE(source->CallMethod1(1));
    EXPECT_EQ("16389 Unknown Error", Error(*source));
}

TEST_F(SharedReceiverTest, AValueBecomesTextAndItsAbsenceAClosedReceiver) {
    Var plain(L"abc");
    Var null = Var::Of(VT_NULL);
    BSTR referenced = V_BSTR(plain.get());
    Var byReference = Var::Of(VT_BYREF | VT_BSTR);
    V_BSTRREF(byReference.get()) = &referenced;
    Var nested = Var::To(plain);
    const struct {
        Var value;
        std::string expected;
    } kCases[] = {
        {Var(L"$GP"), "[$GP]"},
        {Var(std::wstring(L"a\0b\u0141\u00FF", 5)), std::string("[a\0bA\xFF]", 7)},
        {Var(L""), "[]"},
        {Var::Of(VT_BSTR), "[]"},
        {Var(42), "[42]"},
        {byReference, "[abc]"},
        {Var::To(plain), "[abc]"},
        // What cannot become text is an empty one.
        {Var(), "[]"},
        {Var::Of(VT_DISPATCH), "[]"},
        {Var::Of(VT_BYREF | VT_BSTR), "[]"},
        {Var::Of(VT_ARRAY | VT_UI1), "[]"},
        {Var::To(nested), "[]"},
        {Var::Of(VT_NULL), "closed"},
        {Var::To(null), "closed"},
        {Var::Of(VT_BYREF | VT_VARIANT), "closed"},
        {Var::Missing(), "closed"},
    };
    const Ref<SharedReceiverSource> source = MakeSource();
    ASSERT_TRUE(source->Start());
    for (const auto& each : kCases) {
        SCOPED_TRACE(Describe(each.value));
        product_->Raise(kSharedReceiverDataEvent, const_cast<VARIANT*>(each.value.get()));
        EXPECT_EQ(each.expected, TakeAll(*source));
    }
    product_->Raise(kSharedReceiverDataEvent, nullptr);
    EXPECT_EQ("closed", TakeAll(*source));
    for (const DISPID other : {0, 1, 19, 21, -1}) {
        product_->Raise(other, plain.get());
        EXPECT_EQ("", TakeAll(*source)) << other;
    }
}

TEST_F(SharedReceiverTest, AProductWithoutTheEventsStillStarts) {
    product_->OfferEvents(false);
    const Ref<SharedReceiverSource> source = MakeSource();
    EXPECT_TRUE(source->Start());
    EXPECT_EQ("ok", Error(*source));
    EXPECT_EQ(static_cast<std::int32_t>(0x80040200), source->lastResult());
    EXPECT_TRUE(source->CallMethod6(1));
}

// The product may hold a sink that was disconnected, and raise events at it; the source is gone.
TEST_F(SharedReceiverTest, ASinkThatIsKeptReachesNobody) {
    product_->KeepSinks(true);
    const std::int32_t before = Record::LiveCount();
    Ref<SharedReceiverSource> source = MakeSource();
    ASSERT_TRUE(source->Start());
    std::atomic<bool> isEnough = false;
    std::atomic<int> raised = 0;
    std::thread product([&] {
        while (!isEnough) {
            product_.RaiseText(L"$GPGGA");
            ++raised;
        }
    });
    const auto waitForMore = [&raised] {
        const int until = raised + 100;
        while (raised < until)
            Sleep(1);
    };
    waitForMore();
    source.Reset();
    EXPECT_EQ(1, product_->sinks());
    EXPECT_EQ(0, product_->objects());
    EXPECT_EQ(before, Record::LiveCount());
    waitForMore();
    EXPECT_EQ(before, Record::LiveCount());
    isEnough = true;
    product.join();
    product_->Reset();
}

TEST_F(SharedReceiverTest, StartsAndEndsManyTimes) {
    const std::int32_t before = Record::LiveCount();
    for (int i = 0; i < 300; ++i) {
        const Ref<SharedReceiverSource> source = MakeSource();
        ASSERT_TRUE(source->Start());
        product_.RaiseText(L"$GPGGA");
    }
    EXPECT_EQ(before, Record::LiveCount());
}

}  // namespace

}  // namespace kavrel::tests
