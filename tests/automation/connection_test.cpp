// Connecting to the events: several sinks, sinks that misbehave, and the enumerations.
#include <gtest/gtest.h>
#include <ocidl.h>
#include <olectl.h>

#include <vector>

#include "KavrelCE_h.h"
#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

using Texts = std::vector<std::wstring>;

using ConnectionTest = AutomationTest;

void Parse(IDispatch* parser, const wchar_t* text) {
    EXPECT_EQ(S_OK, Call(parser, L"Parse", {text}).status);
}

TEST_F(ConnectionTest, EverySinkIsCalledInOrder) {
    const ComPtr<IDispatch> parser = CreateParser();
    std::vector<int> order;
    const Listener first(parser.Get());
    const Listener second(parser.Get());
    const Listener third(parser.Get());
    int number = 0;
    for (const Listener* listener : {&first, &second, &third}) {
        (*listener)->SetReaction([&order, me = ++number](const RecordedEvent&) {
            order.push_back(me);
            return S_OK;
        });
    }
    Parse(parser.Get(), L"$GPXXX\r\n");
    EXPECT_EQ((std::vector<int>{1, 2, 3}), order);
}

TEST_F(ConnectionTest, FailingSinkDisturbsNobody) {
    const ComPtr<IDispatch> parser = CreateParser();
    const Listener failing(parser.Get());
    const Listener next(parser.Get());
    failing->SetReaction([](const RecordedEvent&) { return E_FAIL; });
    Parse(parser.Get(), L"$GPXXX,1\r\n$GPXXX,2\r\n");
    EXPECT_EQ(2U, failing->events().size());
    EXPECT_EQ(2U, next->events().size());
}

TEST_F(ConnectionTest, DisconnectedSinkIsReleasedAndSilent) {
    const ComPtr<IDispatch> parser = CreateParser();
    Listener listener(parser.Get());
    EXPECT_EQ(2U, listener->references());
    Parse(parser.Get(), L"$GPXXX\r\n");
    listener.Disconnect();
    EXPECT_EQ(1U, listener->references());
    Parse(parser.Get(), L"$GPXXX\r\n");
    EXPECT_EQ(1U, listener->events().size());
}

TEST_F(ConnectionTest, ParserReleasesItsSinks) {
    const ComPtr<EventRecorder> recorder = EventRecorder::Make();
    {
        const ComPtr<IDispatch> parser = CreateParser();
        DWORD cookie = 0;
        EXPECT_EQ(S_OK, EventsOf(parser.Get())->Advise(recorder.Get(), &cookie));
        EXPECT_EQ(2U, recorder->references());
    }
    EXPECT_EQ(1U, recorder->references());
}

TEST_F(ConnectionTest, SinkMayDisconnectItselfInAnEvent) {
    const ComPtr<IDispatch> parser = CreateParser();
    Listener leaving(parser.Get());
    const Listener staying(parser.Get());
    leaving->SetReaction([&](const RecordedEvent&) {
        leaving.Disconnect();
        return S_OK;
    });
    Parse(parser.Get(), L"$GPXXX,1\r\n$GPXXX,2\r\n");
    EXPECT_EQ(1U, leaving->events().size());
    EXPECT_EQ(2U, staying->events().size());
}

TEST_F(ConnectionTest, SinkMayDisconnectALaterOne) {
    const ComPtr<IDispatch> parser = CreateParser();
    const Listener first(parser.Get());
    Listener second(parser.Get());
    first->SetReaction([&](const RecordedEvent&) {
        second.Disconnect();
        return S_OK;
    });
    Parse(parser.Get(), L"$GPXXX\r\n");
    EXPECT_EQ(1U, first->events().size());
    EXPECT_TRUE(second->events().empty()) << "called after it was disconnected";
}

TEST_F(ConnectionTest, LastSinkMayLeaveAndComeBack) {
    const ComPtr<IDispatch> parser = CreateParser();
    Listener only(parser.Get());
    only->SetReaction([&](const RecordedEvent&) {
        only.Disconnect();
        return S_OK;
    });
    Parse(parser.Get(), L"$GPXXX,1\r\n$GPXXX,2\r\n");
    EXPECT_EQ((Texts{L"$GPXXX,1"}), only->texts());
    const Listener again(parser.Get());
    Parse(parser.Get(), L"$GPXXX,3\r\n");
    EXPECT_EQ((Texts{L"$GPXXX,3"}), again->texts());
}

TEST_F(ConnectionTest, SinkConnectedInAnEventHearsTheNextOne) {
    const ComPtr<IDispatch> parser = CreateParser();
    const Listener first(parser.Get());
    std::unique_ptr<Listener> second;
    first->SetReaction([&](const RecordedEvent&) {
        if (!second) second = std::make_unique<Listener>(parser.Get());
        return S_OK;
    });
    Parse(parser.Get(), L"$GPXXX,1\r\n$GPXXX,2\r\n");
    ASSERT_TRUE(second);
    EXPECT_EQ((Texts{L"$GPXXX,2"}), (*second)->texts());
}

TEST_F(ConnectionTest, ParseInAnEventLosesNothing) {
    const ComPtr<IDispatch> parser = CreateParser();
    const Listener listener(parser.Get());
    listener->SetReaction([&](const RecordedEvent& event) {
        if (event.text == L"$GPXXX,1") Parse(parser.Get(), L"$GPXXX,3\r\n");
        return S_OK;
    });
    Parse(parser.Get(), L"$GPXXX,1\r\n$GPXXX,2\r\n");
    EXPECT_EQ((Texts{L"$GPXXX,1", L"$GPXXX,2", L"$GPXXX,3"}), listener->texts());
}

TEST_F(ConnectionTest, SettingsMayChangeInAnEvent) {
    const ComPtr<IDispatch> parser = CreateParser();
    const Listener listener(parser.Get());
    listener->SetReaction(
        [&](const RecordedEvent&) { return Put(parser.Get(), L"ChecksumMandatory", true).status; });
    Parse(parser.Get(), L"$GPXXX,1\r\n$GPXXX,2\r\n");
    EXPECT_EQ((Texts{L"$GPXXX,1"}), listener->texts());

    Put(parser.Get(), L"ChecksumMandatory", false);
    listener->Clear();
    listener->SetReaction(
        [&](const RecordedEvent&) { return Put(parser.Get(), L"NoEvents", true).status; });
    Parse(parser.Get(), L"$GPXXX,1\r\n$GPXXX,2\r\n");
    EXPECT_EQ((Texts{L"$GPXXX,1"}), listener->texts());
}

// The client's last reference goes while the parser is in the middle of its text.
TEST_F(ConnectionTest, SinkMayReleaseTheParser) {
    ComPtr<IDispatch> parser = CreateParser();
    const ComPtr<EventRecorder> recorder = EventRecorder::Make();
    const ComPtr<EventRecorder> second = EventRecorder::Make();
    DWORD cookie = 0;
    EventsOf(parser.Get())->Advise(recorder.Get(), &cookie);
    EventsOf(parser.Get())->Advise(second.Get(), &cookie);
    recorder->SetReaction([&](const RecordedEvent&) {
        parser.Reset();
        return S_OK;
    });

    // Invoke holds the pointer only, as a host may whose variable is the last reference.
    IDispatch* const raw = parser.Get();
    Call(raw, L"Parse", {L"$GPXXX,1\r\n$GPXXX,2\r\n"});
    EXPECT_EQ(nullptr, parser.Get());
    EXPECT_EQ((Texts{L"$GPXXX,1", L"$GPXXX,2"}), recorder->texts());
    EXPECT_EQ((Texts{L"$GPXXX,1", L"$GPXXX,2"}), second->texts());
    EXPECT_EQ(1U, recorder->references());
    EXPECT_EQ(S_FALSE, CanUnloadNow()) << "the recorders hold sentences";
    recorder->Clear();
    second->Clear();
    EXPECT_EQ(S_OK, CanUnloadNow());
}

TEST_F(ConnectionTest, AdviseAsksForADispatchInterface) {
    const ComPtr<IDispatch> parser = CreateParser();
    const ComPtr<IConnectionPoint> point = EventsOf(parser.Get());
    const ComPtr<EventRecorder> recorder = EventRecorder::Make();
    const struct {
        bool offersEvents;
        bool offersDispatch;
        HRESULT expected;
    } cases[] = {
        {true, true, S_OK},
        {true, false, S_OK},
        {false, true, S_OK},
        {false, false, CONNECT_E_CANNOTCONNECT},
    };
    for (const auto& test : cases) {
        recorder->Offer(test.offersEvents, test.offersDispatch);
        DWORD cookie = 4711;
        EXPECT_EQ(test.expected, point->Advise(recorder.Get(), &cookie));
        EXPECT_EQ(FAILED(test.expected), cookie == 0);
        EXPECT_EQ(SUCCEEDED(test.expected) ? S_OK : CONNECT_E_NOCONNECTION,
                  point->Unadvise(cookie));
    }
    EXPECT_EQ(1U, recorder->references());
}

TEST_F(ConnectionTest, FaultyConnectionsAreRefused) {
    const ComPtr<IDispatch> parser = CreateParser();
    const ComPtr<IConnectionPoint> point = EventsOf(parser.Get());
    const ComPtr<EventRecorder> recorder = EventRecorder::Make();
    DWORD cookie = 0;
    EXPECT_EQ(E_POINTER, point->Advise(nullptr, &cookie));
    EXPECT_EQ(E_POINTER, point->Advise(recorder.Get(), nullptr));
    EXPECT_EQ(CONNECT_E_NOCONNECTION, point->Unadvise(0));
    EXPECT_EQ(CONNECT_E_NOCONNECTION, point->Unadvise(4711));
    ASSERT_EQ(S_OK, point->Advise(recorder.Get(), &cookie));
    EXPECT_EQ(S_OK, point->Unadvise(cookie));
    EXPECT_EQ(CONNECT_E_NOCONNECTION, point->Unadvise(cookie)) << "a connection ends once";
    EXPECT_EQ(1U, recorder->references());

    ComPtr<IConnectionPointContainer> container;
    ASSERT_EQ(S_OK, parser.As(&container));
    IConnectionPoint* none = point.Get();
    EXPECT_EQ(CONNECT_E_NOCONNECTION, container->FindConnectionPoint(IID_IDispatch, &none));
    EXPECT_EQ(nullptr, none);
    EXPECT_EQ(E_POINTER, container->FindConnectionPoint(DIID__INmeaParserEvents, nullptr));
    EXPECT_EQ(E_POINTER, container->EnumConnectionPoints(nullptr));
    EXPECT_EQ(E_POINTER, point->EnumConnections(nullptr));
    EXPECT_EQ(E_POINTER, point->GetConnectionInterface(nullptr));
    EXPECT_EQ(E_POINTER, point->GetConnectionPointContainer(nullptr));
}

TEST_F(ConnectionTest, OneSinkMayConnectTwice) {
    const ComPtr<IDispatch> parser = CreateParser();
    const ComPtr<IConnectionPoint> point = EventsOf(parser.Get());
    const ComPtr<EventRecorder> recorder = EventRecorder::Make();
    DWORD first = 0;
    DWORD second = 0;
    ASSERT_EQ(S_OK, point->Advise(recorder.Get(), &first));
    ASSERT_EQ(S_OK, point->Advise(recorder.Get(), &second));
    EXPECT_NE(first, second);
    Parse(parser.Get(), L"$GPXXX\r\n");
    EXPECT_EQ(2U, recorder->events().size());
    EXPECT_EQ(S_OK, point->Unadvise(first));
    Parse(parser.Get(), L"$GPXXX\r\n");
    EXPECT_EQ(3U, recorder->events().size());
    EXPECT_EQ(S_OK, point->Unadvise(second));
}

TEST_F(ConnectionTest, ConnectionPointKnowsItsPlace) {
    const ComPtr<IDispatch> parser = CreateParser();
    const ComPtr<IConnectionPoint> point = EventsOf(parser.Get());
    IID id = {};
    EXPECT_EQ(S_OK, point->GetConnectionInterface(&id));
    EXPECT_TRUE(id == DIID__INmeaParserEvents);
    ComPtr<IConnectionPointContainer> container;
    EXPECT_EQ(S_OK, point->GetConnectionPointContainer(&container));
    ComPtr<IConnectionPointContainer> direct;
    EXPECT_EQ(S_OK, parser.As(&direct));
    EXPECT_EQ(direct.Get(), container.Get());
    void* none = &none;
    EXPECT_EQ(E_NOINTERFACE, point->QueryInterface(IID_IDispatch, &none));
    EXPECT_EQ(nullptr, none);
}

TEST_F(ConnectionTest, ConnectionPointsAreListed) {
    const ComPtr<IDispatch> parser = CreateParser();
    ComPtr<IConnectionPointContainer> container;
    ASSERT_EQ(S_OK, parser.As(&container));
    ComPtr<IEnumConnectionPoints> points;
    ASSERT_EQ(S_OK, container->EnumConnectionPoints(&points));

    IConnectionPoint* listed[2] = {};
    ULONG count = 9;
    EXPECT_EQ(S_FALSE, points->Next(2, listed, &count));
    ASSERT_EQ(1U, count);
    EXPECT_EQ(EventsOf(parser.Get()).Get(), listed[0]);
    listed[0]->Release();
    EXPECT_EQ(S_FALSE, points->Next(1, listed, &count));
    EXPECT_EQ(0U, count);

    ComPtr<IEnumConnectionPoints> clone;
    EXPECT_EQ(S_OK, points->Clone(&clone));
    EXPECT_EQ(S_FALSE, clone->Skip(1)) << "a clone stands where its model stood";
    EXPECT_EQ(S_OK, points->Reset());
    EXPECT_EQ(S_OK, points->Skip(1));
    EXPECT_EQ(S_FALSE, points->Skip(1));
    EXPECT_EQ(S_OK, points->Reset());
    ComPtr<IConnectionPoint> point;
    EXPECT_EQ(S_OK, points->Next(1, &point, nullptr));
    EXPECT_EQ(S_OK, points->Next(0, listed, &count));
    EXPECT_EQ(0U, count);
    EXPECT_EQ(E_POINTER, points->Next(1, nullptr, &count));
    EXPECT_EQ(E_POINTER, points->Next(2, listed, nullptr));
    EXPECT_EQ(E_POINTER, points->Clone(nullptr));
}

TEST_F(ConnectionTest, ConnectionsAreListedAsTheyWere) {
    const ComPtr<IDispatch> parser = CreateParser();
    Listener first(parser.Get());
    const Listener second(parser.Get());
    const DWORD firstCookie = first.cookie();
    ComPtr<IEnumConnections> connections;
    ASSERT_EQ(S_OK, EventsOf(parser.Get())->EnumConnections(&connections));
    first.Disconnect();

    CONNECTDATA listed[3] = {};
    ULONG count = 0;
    EXPECT_EQ(S_FALSE, connections->Next(3, listed, &count));
    ASSERT_EQ(2U, count);
    EXPECT_EQ(firstCookie, listed[0].dwCookie);
    EXPECT_EQ(second.cookie(), listed[1].dwCookie);
    EXPECT_EQ(&*second, listed[1].pUnk);
    listed[0].pUnk->Release();
    listed[1].pUnk->Release();
}

// Script hosts find the events by this.
TEST_F(ConnectionTest, ParserTellsItsEventInterface) {
    const ComPtr<IDispatch> parser = CreateParser();
    ComPtr<IProvideClassInfo2> provider;
    ASSERT_EQ(S_OK, parser.As(&provider));
    GUID id = {};
    EXPECT_EQ(S_OK, provider->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &id));
    EXPECT_TRUE(id == DIID__INmeaParserEvents);
    EXPECT_EQ(E_INVALIDARG, provider->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID + 1, &id));
    EXPECT_TRUE(id == GUID_NULL);
    EXPECT_EQ(E_POINTER, provider->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, nullptr));

    const ComPtr<IDispatch> sentence = MakeSentence(L"$GPXXX");
    ComPtr<IProvideClassInfo> plain;
    EXPECT_EQ(S_OK, sentence.As(&plain));
    EXPECT_EQ(E_NOINTERFACE, sentence.As(&provider)) << "a sentence has no events";
    ComPtr<IConnectionPointContainer> container;
    EXPECT_EQ(E_NOINTERFACE, sentence.As(&container));
}

}  // namespace

}  // namespace kavrel::tests
