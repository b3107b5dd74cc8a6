// EventRecorder: a client's sink for the events of NmeaParser. Listener: one that is connected.
#pragma once

#include <gtest/gtest.h>
#include <ocidl.h>
#include <wrl/client.h>

#include <functional>
#include <string>
#include <vector>

#include "automation/support/library.h"
#include "automation/support/plain_dispatch.h"
#include "automation/support/var.h"

namespace kavrel::tests {

// The dispids of the events.
enum EventId : DISPID {
    kGeneric = 1,
    kGga = 2,
    kGll = 3,
    kRmc = 4,
    kOnSatellites = 5,
    kOnGpsFix = 6,
    kOnMovement = 7,
    kOnQuality = 8,
    kOnComStatus = 9,
};

struct RecordedEvent {
    DISPID id;
    Vars arguments;     // in their order
    std::wstring text;  // of Generic: the sentence's text at the time of the event
};

class EventRecorder final : public PlainDispatch {
  public:
    static Microsoft::WRL::ComPtr<EventRecorder> Make();

    const std::vector<RecordedEvent>& events() const { return events_; }

    // The texts of the Generic events, in order.
    std::vector<std::wstring> texts() const;
    void Clear() { events_.clear(); }

    // Runs in each event, after it was recorded. What it returns is what the sink answers.
    using Reaction = std::function<HRESULT(const RecordedEvent&)>;
    void SetReaction(Reaction reaction) { reaction_ = std::move(reaction); }

    // What the sink answers for besides IUnknown: the event interface, IDispatch, or both.
    void Offer(bool eventInterface, bool dispatch) {
        offersEvents_ = eventInterface;
        offersDispatch_ = dispatch;
    }

    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD kinds, DISPPARAMS* parameters,
                        VARIANT* result, EXCEPINFO*, UINT*) override;

  private:
    bool Offers(REFIID id) const override;

    std::vector<RecordedEvent> events_;
    Reaction reaction_;
    bool offersEvents_ = true;
    bool offersDispatch_ = true;
};

// The connection point of a parser's events; null when it has none.
Microsoft::WRL::ComPtr<IConnectionPoint> EventsOf(IUnknown* parser);

// A recorder that listens to a parser for a scope.
class Listener {
  public:
    explicit Listener(IDispatch* parser);
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    void Disconnect();
    DWORD cookie() const { return cookie_; }
    EventRecorder* operator->() const { return recorder_.Get(); }
    EventRecorder& operator*() const { return *recorder_.Get(); }

  private:
    Microsoft::WRL::ComPtr<EventRecorder> recorder_;
    Microsoft::WRL::ComPtr<IConnectionPoint> point_;
    DWORD cookie_ = 0;
};

// Fixture: a parser to feed.
class ParserTest : public AutomationTest {
  protected:
    void SetUp() override;
    void TearDown() override;
    void Parse(const std::wstring& text);

    Microsoft::WRL::ComPtr<IDispatch> parser_;
};

// A sentence object, as a client gets one: with the event of a parsed text. `text` stands without
// line end and is of a type that is not decoded, "$GPXXX,...".
Microsoft::WRL::ComPtr<IDispatch> MakeSentence(const std::wstring& text);

}  // namespace kavrel::tests
