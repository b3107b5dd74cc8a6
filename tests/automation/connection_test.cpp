// Connecting to the events: several sinks, what they do in their events, and the enumerations.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ocidl.h>
#include <olectl.h>

#include <optional>
#include <vector>

#include "KavrelCE_h.h"
#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;

namespace kavrel::tests {

namespace {

using Texts = std::vector<std::wstring>;

class ConnectionTest : public ParserTest {
  protected:
    ComPtr<IConnectionPoint> point() { return EventsOf(parser_.Get()); }
    ComPtr<IConnectionPointContainer> container() {
        ComPtr<IConnectionPointContainer> container;
        EXPECT_EQ(S_OK, parser_.As(&container));
        return container;
    }
};

const Texts kOne = {L"$GPXXX,1"};
const Texts kTwo = {L"$GPXXX,2"};
const Texts kBoth = {L"$GPXXX,1", L"$GPXXX,2"};

// What the first of two sinks does in its first event, and what both hear of two sentences. At the
// end of a case the parser is left without sinks.
TEST_F(ConnectionTest, SinksMayDoAnythingInAnEvent) {
    using Sinks = std::optional<Listener>[2];
    const struct {
        const char* name;
        void (*react)(IDispatch* parser, Sinks& sinks);
        Texts first;
        Texts second;
    } cases[] = {
        {"leave", [](IDispatch*, Sinks& sinks) { sinks[0]->Disconnect(); }, kOne, kBoth},
        {"end the other", [](IDispatch*, Sinks& sinks) { sinks[1]->Disconnect(); }, kBoth, {}},
        {"add one", [](IDispatch* parser, Sinks& sinks) { sinks[1].emplace(parser); }, kBoth, kTwo},
        {"silence", [](IDispatch* parser, Sinks&) { Put(parser, L"NoEvents", true); }, kOne, kOne},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        Sinks sinks;
        for (auto& sink : sinks)
            sink.emplace(parser_.Get());
        (*sinks[0])->SetReaction([&](const RecordedEvent& event) {
            if (event.text == kOne[0]) test.react(parser_.Get(), sinks);
            return E_FAIL;  // disturbs nobody
        });
        Parse(L"$GPXXX,1\r\n$GPXXX,2\r\n");
        EXPECT_EQ(test.first, (*sinks[0])->texts());
        EXPECT_EQ(test.second, (*sinks[1])->texts());
    }
}

// What an event hands out is shared: who changes it changes what the later sinks see.
TEST_F(ConnectionTest, SinksShareTheSentence) {
    const Listener first(parser_.Get());
    const Listener second(parser_.Get());
    first->SetReaction([](const RecordedEvent& event) {
        return Call(event.arguments[0].object(), L"SetField", {1, L"changed"}).status;
    });
    Parse(L"$GPXXX,1\r\n");
    EXPECT_EQ(kOne, first->texts());
    EXPECT_THAT(second->texts(), ElementsAre(testing::StartsWith(L"$GPXXX,changed")));
}

// The client's last reference goes while the parser is in the middle of its text.
TEST_F(ConnectionTest, SinkMayReleaseTheParser) {
    const ComPtr<EventRecorder> sinks[] = {EventRecorder::Make(), EventRecorder::Make()};
    DWORD cookie = 0;
    for (const ComPtr<EventRecorder>& sink : sinks)
        point()->Advise(sink.Get(), &cookie);
    sinks[0]->SetReaction([&](const RecordedEvent&) {
        parser_.Reset();
        return S_OK;
    });

    // Invoke holds the pointer only, as a host may whose variable is the last reference.
    IDispatch* const raw = parser_.Get();
    Call(raw, L"Parse", {L"$GPXXX,1\r\n$GPXXX,2\r\n"});
    EXPECT_EQ(nullptr, parser_.Get());
    EXPECT_EQ(S_FALSE, CanUnloadNow()) << "the recorders hold sentences";
    for (const ComPtr<EventRecorder>& sink : sinks) {
        EXPECT_EQ(kBoth, sink->texts());
        EXPECT_EQ(1U, sink->references());
        sink->Clear();
    }
}

TEST_F(ConnectionTest, AdviseAsksForADispatchInterface) {
    const ComPtr<EventRecorder> recorder = EventRecorder::Make();
    for (const bool offersEvents : {true, false}) {
        for (const bool offersDispatch : {true, false}) {
            recorder->Offer(offersEvents, offersDispatch);
            const bool fits = offersEvents || offersDispatch;
            DWORD cookie = 4711;
            EXPECT_EQ(fits ? S_OK : CONNECT_E_CANNOTCONNECT,
                      point()->Advise(recorder.Get(), &cookie));
            EXPECT_EQ(fits, cookie != 0);
            EXPECT_EQ(fits ? S_OK : CONNECT_E_NOCONNECTION, point()->Unadvise(cookie));
            EXPECT_EQ(CONNECT_E_NOCONNECTION, point()->Unadvise(cookie)) << "it ends once";
        }
    }
    EXPECT_EQ(1U, recorder->references());
}

TEST_F(ConnectionTest, NullPointersAndUnknownEventsAreRefused) {
    const ComPtr<EventRecorder> recorder = EventRecorder::Make();
    DWORD cookie = 0;
    EXPECT_EQ(E_POINTER, point()->Advise(nullptr, &cookie));
    EXPECT_EQ(E_POINTER, point()->Advise(recorder.Get(), nullptr));
    EXPECT_EQ(E_POINTER, point()->EnumConnections(nullptr));
    EXPECT_EQ(E_POINTER, point()->GetConnectionInterface(nullptr));
    EXPECT_EQ(E_POINTER, point()->GetConnectionPointContainer(nullptr));
    EXPECT_EQ(E_POINTER, container()->FindConnectionPoint(DIID__INmeaParserEvents, nullptr));
    EXPECT_EQ(E_POINTER, container()->EnumConnectionPoints(nullptr));
    IConnectionPoint* none = point().Get();
    EXPECT_EQ(CONNECT_E_NOCONNECTION, container()->FindConnectionPoint(IID_IDispatch, &none));
    EXPECT_EQ(nullptr, none);
}

// Script hosts find the events by this.
TEST_F(ConnectionTest, ParserTellsItsEventInterface) {
    IID id = {};
    EXPECT_EQ(S_OK, point()->GetConnectionInterface(&id));
    EXPECT_TRUE(id == DIID__INmeaParserEvents);
    ComPtr<IConnectionPointContainer> owner;
    EXPECT_EQ(S_OK, point()->GetConnectionPointContainer(&owner));
    EXPECT_EQ(container().Get(), owner.Get());
    // Managed hosts go by the identity of what they are given.
    ComPtr<IUnknown> identity;
    ASSERT_EQ(S_OK, point().As(&identity));
    ComPtr<IConnectionPoint> back;
    ASSERT_EQ(S_OK, identity.As(&back));
    EXPECT_EQ(point().Get(), back.Get());
    void* none = &none;
    EXPECT_EQ(E_NOINTERFACE, point()->QueryInterface(IID_IDispatch, &none));
    EXPECT_EQ(nullptr, none);

    ComPtr<IProvideClassInfo2> provider;
    ASSERT_EQ(S_OK, parser_.As(&provider));
    EXPECT_EQ(E_INVALIDARG, provider->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID + 1, &id));
    EXPECT_TRUE(id == GUID_NULL);
    EXPECT_EQ(S_OK, provider->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &id));
    EXPECT_TRUE(id == DIID__INmeaParserEvents);
    EXPECT_EQ(E_POINTER, provider->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, nullptr));

    const ComPtr<IDispatch> sentence = MakeSentence(L"$GPXXX");
    EXPECT_EQ(E_NOINTERFACE, sentence.As(&provider)) << "a sentence has no events";
    EXPECT_EQ(E_NOINTERFACE, sentence.As(&owner));
}

// With the rules of all enumerators of the library.
TEST_F(ConnectionTest, ConnectionPointsAreListed) {
    ComPtr<IEnumConnectionPoints> points;
    ASSERT_EQ(S_OK, container()->EnumConnectionPoints(&points));
    ComPtr<IConnectionPoint> listed[2];
    ULONG count = 9;
    EXPECT_EQ(S_FALSE, points->Next(2, listed[0].GetAddressOf(), &count));
    EXPECT_EQ(1U, count);
    EXPECT_EQ(point().Get(), listed[0].Get());
    ComPtr<IEnumConnectionPoints> clone;
    EXPECT_EQ(S_OK, points->Clone(&clone));
    EXPECT_EQ(S_FALSE, clone->Skip(1)) << "a clone stands where its model stood";
    EXPECT_EQ(S_OK, points->Reset());
    EXPECT_EQ(S_OK, points->Skip(1));
    EXPECT_EQ(S_FALSE, points->Next(1, &listed[1], nullptr));
    EXPECT_EQ(S_OK, points->Next(0, &listed[1], &count));
    EXPECT_EQ(0U, count);
    EXPECT_EQ(E_POINTER, points->Next(1, nullptr, &count));
    EXPECT_EQ(E_POINTER, points->Next(2, &listed[1], nullptr));
    EXPECT_EQ(E_POINTER, points->Clone(nullptr));
}

TEST_F(ConnectionTest, ConnectionsAreListedAsTheyWere) {
    Listener first(parser_.Get());
    const Listener second(parser_.Get());
    const DWORD firstCookie = first.cookie();
    ComPtr<IEnumConnections> connections;
    ASSERT_EQ(S_OK, point()->EnumConnections(&connections));
    first.Disconnect();

    CONNECTDATA listed[3] = {};
    ULONG count = 0;
    EXPECT_EQ(S_FALSE, connections->Next(3, listed, &count));
    ASSERT_EQ(2U, count);
    EXPECT_NE(firstCookie, second.cookie());
    EXPECT_EQ(firstCookie, listed[0].dwCookie);
    EXPECT_EQ(second.cookie(), listed[1].dwCookie);
    EXPECT_EQ(&*second, listed[1].pUnk);
    listed[0].pUnk->Release();
    listed[1].pUnk->Release();
}

}  // namespace

}  // namespace kavrel::tests
