// The library without registration: a host whose manifest names the assembly. Runs in a prefix in
// which nothing was ever registered.
//
// The build folder is as a host's folder: the DLL, its manifest, and the host's, which is the
// sample's.
#include <gtest/gtest.h>
#include <ole2.h>
#include <wrl/client.h>

#include <atomic>
#include <string>
#include <thread>

#include "KavrelCE_h.h"
#include "automation/support/live_test.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

constexpr wchar_t kHostManifest[] = L"" KAVREL_BUILD "/host.exe.manifest";

// The host's manifest counts for a scope.
class Activation {
  public:
    Activation() {
        ACTCTXW wanted = {};
        wanted.cbSize = sizeof(wanted);
        wanted.lpSource = kHostManifest;
        context_ = CreateActCtxW(&wanted);
        EXPECT_TRUE(ActivateActCtx(context_, &cookie_)) << GetLastError();
    }
    ~Activation() {
        DeactivateActCtx(0, cookie_);
        ReleaseActCtx(context_);
    }
    Activation(const Activation&) = delete;
    Activation& operator=(const Activation&) = delete;

  private:
    HANDLE context_;
    ULONG_PTR cookie_ = 0;
};

class ManifestTest : public AutomationTest {
  protected:
    static void SetUpTestSuite() { EXPECT_FALSE(CreateParser()) << "nothing is registered"; }

  private:
    const Activation host_;
};

// A name leads to an identity that the platform makes up for the context, and that to the class.
TEST_F(ManifestTest, ClassesAreCreatedByNameAndIdentity) {
    for (const CreatableClass& creatable : CreatableClasses()) {
        SCOPED_TRACE(testing::PrintToString(creatable));
        for (const std::wstring& name : {creatable.ProgId(), creatable.ProgId() + L".1"})
            EXPECT_TRUE(CreateByName(name));
        ComPtr<IUnknown> object;
        EXPECT_EQ(S_OK, CoCreateInstance(creatable.classId, nullptr, CLSCTX_INPROC_SERVER,
                                         creatable.interfaceId,
                                         reinterpret_cast<void**>(object.GetAddressOf())));
    }
}

// A free-threaded class gives an apartment the object itself, and no proxy: its record can be
// reached.
TEST_F(ManifestTest, PositionsReachADatum) {
    const ComPtr<IDispatch> datum = CreateByName(L"KavrelCE.CustomDatum");
    ExpectSteps(CreateByName(L"KavrelCE.Position").Get(),
                {{L"&CustomDatum", {datum.Get()}, ""}, {L"Datum", {}, "I2 28"}});
}

// Errors tell the class by its registration, which is not there: the rest of them is.
TEST_F(ManifestTest, EventsArriveAndErrorsHaveNoSource) {
    const ComPtr<IDispatch> parser = CreateParser();
    const Listener listener(parser.Get());
    ExpectSteps(parser.Get(), {{L"Parse", {L"$PKVRL,1\r\n"}, ""},
                               {L"=GpsDatum", {29}, "80042713 Unknown datum!"}});
    EXPECT_EQ(1U, listener->texts().size());
}

// Another apartment reaches a parser by the platform's proxies, which must find the interface and
// its type library.
TEST_F(ManifestTest, AnotherApartmentCallsAParser) {
    const ComPtr<IDispatch> parser = CreateParser();
    IStream* parcel = nullptr;
    ASSERT_EQ(S_OK, CoMarshalInterThreadInterfaceInStream(IID_INmeaParser, parser.Get(), &parcel));
    std::atomic<bool> isDone = false;
    std::thread caller([&] {
        const Activation there;
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        ComPtr<INmeaParser> proxy;
        EXPECT_EQ(S_OK, CoGetInterfaceAndReleaseStream(parcel, IID_PPV_ARGS(proxy.GetAddressOf())));
        if (proxy) {
            EXPECT_EQ(S_OK, proxy->put_GpsDatum(*Var(3).get()));
            EXPECT_EQ(static_cast<HRESULT>(0x80042713), proxy->put_GpsDatum(*Var(29).get()));
        }
        proxy.Reset();
        CoUninitialize();
        isDone = true;
    });
    EXPECT_TRUE(DispatchUntil([&] { return isDone.load(); }));
    caller.join();
}

}  // namespace

}  // namespace kavrel::tests
