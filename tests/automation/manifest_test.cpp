// The library without registration: a host whose manifest names the assembly. Runs in a prefix in
// which nothing was ever registered.
//
// The build folder is as a host's folder: the DLL, its manifest, and the host's, which is the
// sample's.
#include <gtest/gtest.h>
#include <ole2.h>
#include <wrl/client.h>

#include <string>
#include <thread>
#include <vector>

#include "KavrelCE_h.h"
#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

constexpr wchar_t kHostManifest[] = L"" KAVREL_BUILD "/host.exe.manifest";

using ManifestTest = AutomationTest;

// The host's manifest counts for a scope. False when the platform refuses it.
class Activation {
  public:
    Activation() {
        ACTCTXW wanted = {};
        wanted.cbSize = sizeof(wanted);
        wanted.lpSource = kHostManifest;
        context_ = CreateActCtxW(&wanted);
        error_ = GetLastError();
        isActive_ = context_ != INVALID_HANDLE_VALUE && ActivateActCtx(context_, &cookie_) != FALSE;
    }
    ~Activation() {
        if (isActive_) DeactivateActCtx(0, cookie_);
        if (context_ != INVALID_HANDLE_VALUE) ReleaseActCtx(context_);
    }
    Activation(const Activation&) = delete;
    Activation& operator=(const Activation&) = delete;

    bool isActive() const { return isActive_; }
    DWORD error() const { return error_; }

  private:
    HANDLE context_ = INVALID_HANDLE_VALUE;
    ULONG_PTR cookie_ = 0;
    DWORD error_ = 0;
    bool isActive_ = false;
};

TEST_F(ManifestTest, NothingIsRegistered) {
    for (const CreatableClass& creatable : CreatableClasses()) {
        CLSID found;
        EXPECT_EQ(CO_E_CLASSSTRING, CLSIDFromProgID(creatable.ProgId().c_str(), &found));
        ComPtr<IUnknown> object;
        EXPECT_EQ(REGDB_E_CLASSNOTREG,
                  CoCreateInstance(creatable.classId, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_PPV_ARGS(object.GetAddressOf())));
    }
}

// A name leads to an identity that the platform makes up for the context, and that to the class.
TEST_F(ManifestTest, ClassesAreCreatedByNameAndIdentity) {
    const Activation host;
    ASSERT_TRUE(host.isActive()) << host.error();
    for (const CreatableClass& creatable : CreatableClasses()) {
        for (const std::wstring& name : {creatable.ProgId(), creatable.ProgId() + L".1"}) {
            const ComPtr<IDispatch> object = CreateByName(name);
            ASSERT_TRUE(object) << Narrow(name);
            ComPtr<IUnknown> dual;
            EXPECT_EQ(S_OK, object.CopyTo(creatable.interfaceId,
                                          reinterpret_cast<void**>(dual.GetAddressOf())))
                << Narrow(name);
        }
        ComPtr<IUnknown> object;
        EXPECT_EQ(S_OK, CoCreateInstance(creatable.classId, nullptr, CLSCTX_INPROC_SERVER,
                                         creatable.interfaceId,
                                         reinterpret_cast<void**>(object.GetAddressOf())))
            << Narrow(creatable.ProgId());
    }
}

// A free-threaded class gives an apartment the object itself, and no proxy: its record can be
// reached.
TEST_F(ManifestTest, PositionsReachADatum) {
    const Activation host;
    ASSERT_TRUE(host.isActive()) << host.error();
    const ComPtr<IDispatch> position = CreateByName(L"KavrelCE.Position");
    const ComPtr<IDispatch> datum = CreateByName(L"KavrelCE.CustomDatum");
    ASSERT_TRUE(position && datum);
    ComPtr<IPosition> dual;
    ASSERT_EQ(S_OK, position.As(&dual));
    EXPECT_EQ(S_OK, dual->putref_CustomDatum(*Var(datum.Get()).get()));
    EXPECT_EQ("I2 28", Describe(Get(position.Get(), L"Datum").value));
}

TEST_F(ManifestTest, EventsArrive) {
    const Activation host;
    ASSERT_TRUE(host.isActive()) << host.error();
    const ComPtr<IDispatch> parser = CreateParser();
    ASSERT_TRUE(parser);
    const Listener listener(parser.Get());
    Call(parser.Get(), L"Parse",
         {L"$GPGGA,120000,5130.000,N,00007.500,W,1,08,0.9,35,M,47,M,,\r\n"});
    std::vector<DISPID> events;
    for (const RecordedEvent& event : listener->events())
        events.push_back(event.id);
    EXPECT_EQ((std::vector<DISPID>{kGga, kOnComStatus, kOnGpsFix, kGeneric}), events);
}

// Errors tell the class by its registration, which is not there: the rest of them is.
TEST_F(ManifestTest, ErrorsHaveNoSource) {
    const Activation host;
    ASSERT_TRUE(host.isActive()) << host.error();
    const ComPtr<IDispatch> parser = CreateParser();
    ASSERT_TRUE(parser);
    const CallResult result = Put(parser.Get(), L"GpsDatum", 29);
    EXPECT_EQ(static_cast<HRESULT>(0x80042713), result.failure);
    ASSERT_TRUE(result.error.has_value());
    EXPECT_EQ(L"Unknown datum!", result.error->description);
    EXPECT_EQ(L"", result.error->source.value_or(L""));
}

TEST_F(ManifestTest, TypeLibraryIsFound) {
    const Activation host;
    ASSERT_TRUE(host.isActive()) << host.error();
    ComPtr<ITypeLib> library;
    EXPECT_EQ(S_OK, LoadRegTypeLib(LIBID_KavrelCE, 1, 0, 0, &library));
}

// Another apartment reaches a parser by the platform's proxies, which must find the interface.
TEST_F(ManifestTest, AnotherApartmentCallsAParser) {
    const Activation host;
    ASSERT_TRUE(host.isActive()) << host.error();
    const ComPtr<IDispatch> parser = CreateParser();
    ASSERT_TRUE(parser);
    IStream* parcel = nullptr;
    ASSERT_EQ(S_OK, CoMarshalInterThreadInterfaceInStream(IID_INmeaParser, parser.Get(), &parcel));

    HRESULT outcomes[3] = {E_PENDING, E_PENDING, E_PENDING};
    HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread caller([&] {
        const Activation there;
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        {
            ComPtr<INmeaParser> proxy;
            outcomes[0] =
                CoGetInterfaceAndReleaseStream(parcel, IID_PPV_ARGS(proxy.GetAddressOf()));
            if (proxy) {
                outcomes[1] = proxy->put_GpsDatum(*Var(3).get());
                outcomes[2] = proxy->put_GpsDatum(*Var(29).get());
            }
        }
        CoUninitialize();
        SetEvent(done);
    });
    DWORD index = 0;
    EXPECT_EQ(S_OK, CoWaitForMultipleHandles(0, 20000, 1, &done, &index));
    caller.join();
    CloseHandle(done);
    EXPECT_EQ(S_OK, outcomes[0]);
    EXPECT_EQ(S_OK, outcomes[1]);
    EXPECT_EQ(static_cast<HRESULT>(0x80042713), outcomes[2]);
}

}  // namespace

}  // namespace kavrel::tests
