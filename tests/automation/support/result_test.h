// Fixture: a parser with a listener, and sentences of every decoded type to feed it with.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "automation/support/event_recorder.h"
#include "automation/support/library.h"
#include "automation/support/steps.h"

namespace kavrel::tests {

inline const wchar_t* const kGgaText =
    L"$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,";
inline const wchar_t* const kRmcText =
    L"$GPRMC,123519,A,4807.038,N,01131.000,E,10,084.4,230394,003.1,W";
inline const wchar_t* const kGllText = L"$GPGLL,4807.038,N,01131.000,E,123520,A";
inline const wchar_t* const kVtgText = L"$GPVTG,084.4,T,087.5,M,010,N,018.5,K";
inline const wchar_t* const kGsaText = L"$GPGSA,A,3,01,,,,,,,,,,,,2.5,1.3,2.1";
inline const wchar_t* const kGsvText = L"$GPGSV,1,1,02,01,40,083,46,02,17,308,41";

class ResultTest : public AutomationTest {
  protected:
    void SetUp() override {
        AutomationTest::SetUp();
        parser_ = CreateParser();
        ASSERT_TRUE(parser_);
        listener_.emplace(parser_.Get());
    }
    void TearDown() override {
        listener_.reset();
        parser_.Reset();
        AutomationTest::TearDown();
    }

    IDispatch* parser() { return parser_.Get(); }
    EventRecorder& recorder() { return **listener_; }
    void StopListening() { listener_.reset(); }
    void StartListening() { listener_.emplace(parser_.Get()); }

    // The events that a sentence raises.
    std::vector<RecordedEvent> EventsOf(const std::wstring& sentence) {
        recorder().Clear();
        EXPECT_EQ("", Outcome(Call(parser(), L"Parse", {sentence + L"\r\n"})));
        return recorder().events();
    }
    // The first object of the event of that kind.
    Microsoft::WRL::ComPtr<IDispatch> ObjectOf(DISPID id, const std::wstring& sentence) {
        for (const RecordedEvent& event : EventsOf(sentence)) {
            if (event.id == id) return event.arguments[0].object();
        }
        ADD_FAILURE() << "no such event";
        return nullptr;
    }

  private:
    Microsoft::WRL::ComPtr<IDispatch> parser_;
    std::optional<Listener> listener_;
};

}  // namespace kavrel::tests
