// LiveTest: fixture for a parser that reads from a port. And what such tests need besides: text
// as receivers say it, messages dispatched, and durations.
#pragma once

#include <gtest/gtest.h>
#include <oaidl.h>
#include <wrl/client.h>

#include <functional>
#include <string>
#include <string_view>

#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"
#include "automation/support/steps.h"
#include "automation/support/test_port.h"

namespace kavrel::tests {

// "$<body>*<checksum>\r\n"
std::string Line(std::string_view body);

// A sentence that only Generic tells of, with a number as first field.
inline std::string NumberedLine(int number) {
    return Line("PKVRL," + std::to_string(number));
}

// A fix with altitude (type 3), and one without (type 2).
extern const std::string kGgaLine;
extern const std::string kRmcLine;

// Dispatches this thread's messages until it is done, looking after each one. False when it was not
// in that time.
bool DispatchUntil(const std::function<bool()>& done, int timeoutMs = 20000);

// For so long, whatever happens.
void DispatchFor(int ms);

// How long the action took, in milliseconds, by the precise clock.
double MillisecondsOf(const std::function<void()>& action);

// A ComStatus as text, "3@4800 nmea fix": port, rate, and the flags that are set. Of that port:
inline std::string At(const TestPort& port, const std::string& rateAndFlags) {
    return std::to_string(port.number()) + "@" + rateAndFlags;
}

// As each OnComStatus event of the recorder told it, in order: "3@4800, 3@4800 nmea".
std::string StatusesOf(const EventRecorder& recorder);

// Chooses port and rate, and enables. What PortEnabled gave, as Outcome says it.
std::string TryEnable(IDispatch* parser, int port, int rate = 4800);

// The same, expecting success, until the port's threads are at work: one byte is written.
// Wine does not bear it that a port is closed while a thread is being born. The thread may get the
// port's file number for its pipe to Wine's server, and a read of the port that still goes on takes
// the server's answer from there, for which the thread waits forever.
void EnablePort(IDispatch* parser, TestPort& port, int rate = 4800);

class LiveTest : public ParserTest {
  protected:
    IDispatch* parser() { return parser_.Get(); }

    void Enable(TestPort& port, int rate = 4800) { EnablePort(parser(), port, rate); }
    void Disable();

    // Waits until GetComStatus tells that, dispatching messages meanwhile.
    void WaitForStatus(const std::string& status);
};

}  // namespace kavrel::tests
