// The shared-receiver source on a real COM object: the stand-in for the product.
#include "platform/win32/shared_receiver.h"

#include <gtest/gtest.h>
#include <ole2.h>

#include <atomic>
#include <string>
#include <thread>

#include "automation/support/shared_receiver_server.h"
#include "automation/support/var.h"
#include "base/library_lock.h"
#include "platform/win32/shared_receiver_ids.h"
#include "platform/win32/shared_receiver_sink.h"
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

    void SetUp() override { before_ = Record::LiveCount(); }
    void TearDown() override {
        EXPECT_EQ(0, product_.references());
        EXPECT_EQ(before_, Record::LiveCount());
    }

    SharedReceiverServer product_;
    std::int32_t before_ = 0;
};

TEST_F(SharedReceiverTest, CallsAndDeliversWhateverApartmentItsClientIsIn) {
    const auto useProduct = [this] {
        const Ref<SharedReceiverSource> source = MakeSource();
        ASSERT_TRUE(source->Start()) << Error(*source);
        EXPECT_EQ(0, source->lastResult());
        EXPECT_TRUE(source->CallMethod1(-1));
        EXPECT_TRUE(source->CallMethod2(0x12345678));
        EXPECT_TRUE(source->CallMethod4());
        EXPECT_TRUE(source->CallMethod6(6));
        product_.RaiseText(L"$GPGGA,1\r\n");
        std::thread([this] { product_.RaiseText(L"$GPRMC,2\r\n"); }).join();
        EXPECT_EQ("[$GPGGA,1\r\n][$GPRMC,2\r\n]", TakeAll(*source));
    };
    useProduct();
    EXPECT_FALSE(product_.sink());
    std::thread(useProduct).join();
    const std::string calls = "1(-1) 2(305419896) 4() 6(6) ";
    EXPECT_EQ(calls + calls, product_.calls());
}

TEST_F(SharedReceiverTest, AFailingCallIsReportedWithTheProductsText) {
    const Ref<SharedReceiverSource> source = MakeSource();
    ASSERT_TRUE(source->Start());
    product_.Answer(6, MAKE_HRESULT(1, FACILITY_ITF, 0x1234), L"No receiver in range");
    EXPECT_FALSE(source->CallMethod6(1));
    EXPECT_EQ("4660 No receiver in range", Error(*source));

    // What an earlier call has left does not belong to one that fails without a text.
    product_.Answer(4, S_FALSE, L"A note");
    EXPECT_TRUE(source->CallMethod4());
    EXPECT_EQ("ok", Error(*source));
    EXPECT_EQ(S_FALSE, source->lastResult());
    for (const wchar_t* none : {static_cast<const wchar_t*>(nullptr), L""}) {
        product_.Answer(2, E_FAIL, none);
        EXPECT_FALSE(source->CallMethod2(1));
        EXPECT_EQ("16389 Unknown Error", Error(*source));
    }
}

TEST_F(SharedReceiverTest, AValueBecomesTextAndItsAbsenceAClosedReceiver) {
    Var plain(L"abc");
    Var null = Var::Of(VT_NULL);
    Var byReference = Var::Of(VT_BYREF | VT_BSTR);
    V_BSTRREF(byReference.get()) = &V_BSTR(plain.get());
    Var nested = Var::To(plain);
    const struct {
        Var value;
        std::string expected;
    } kCases[] = {
        {Var(L"$GP"), "[$GP]"},
        {Var(std::wstring(L"a\0b\u0141\u00FF", 5)), std::string("[a\0bA\xFF]", 7)},
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
        product_.Raise(kSharedReceiverDataEvent, each.value.get());
        EXPECT_EQ(each.expected, TakeAll(*source)) << Describe(each.value);
    }
    product_.Raise(kSharedReceiverDataEvent, nullptr);
    EXPECT_EQ("closed", TakeAll(*source));
    for (const DISPID other : {0, 19, 21, -1}) {
        product_.Raise(other, plain.get());
        EXPECT_EQ("", TakeAll(*source)) << other;
    }
}

TEST_F(SharedReceiverTest, AProductWithoutTheEventsStillStarts) {
    product_.offersEvents = false;
    const Ref<SharedReceiverSource> source = MakeSource();
    EXPECT_TRUE(source->Start());
    EXPECT_EQ(static_cast<std::int32_t>(0x80040200), source->lastResult());
    EXPECT_TRUE(source->CallMethod6(1)) << Error(*source);
}

// Products may look at a sink before they call it.
TEST_F(SharedReceiverTest, ASinkIsOfferedAsTheEventsAndDescribesNothing) {
    struct Nobody final : SharedReceiverListener {
        void OnText(std::string_view) override {}
        void OnClosed() override {}
    } nobody;
    IDispatch* const sink = new SharedReceiverSink(nobody);
    for (const IID* id : {&IID_IUnknown, &IID_IDispatch, &kSharedReceiverEvents}) {
        void* found = nullptr;
        EXPECT_EQ(S_OK, sink->QueryInterface(*id, &found));
        EXPECT_EQ(sink, found);
        sink->Release();
    }
    EXPECT_EQ(E_POINTER, sink->QueryInterface(IID_IUnknown, nullptr));
    UINT count = 1;
    EXPECT_EQ(S_OK, sink->GetTypeInfoCount(&count));
    EXPECT_EQ(0U, count);
    EXPECT_EQ(E_POINTER, sink->GetTypeInfoCount(nullptr));
    EXPECT_EQ(E_NOTIMPL, sink->GetTypeInfo(0, 0, nullptr));
    EXPECT_EQ(DISP_E_UNKNOWNNAME, sink->GetIDsOfNames(IID_NULL, nullptr, 0, 0, nullptr));
    EXPECT_EQ(0U, sink->Release());
}

// The product may hold a sink that was disconnected, and raise events at it; the source is gone.
TEST_F(SharedReceiverTest, ASinkThatIsKeptReachesNobody) {
    product_.keepsSink = true;
    Ref<SharedReceiverSource> source = MakeSource();
    ASSERT_TRUE(source->Start());
    std::atomic<bool> isEnough = false;
    std::atomic<int> raised = 0;
    std::thread product([&] {
        for (; !isEnough; ++raised)
            product_.RaiseText(L"$GPGGA");
    });
    const auto waitForMore = [&raised] {
        const int until = raised + 100;
        while (raised < until)
            Sleep(1);
    };
    waitForMore();
    source.Reset();
    EXPECT_TRUE(product_.sink());
    EXPECT_EQ(0, product_.references());
    EXPECT_EQ(before_, Record::LiveCount());
    waitForMore();
    EXPECT_EQ(before_, Record::LiveCount());
    isEnough = true;
    product.join();
}

}  // namespace

}  // namespace kavrel::tests
