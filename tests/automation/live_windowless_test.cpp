// A parser where no window can be made: no events from the port, and everything else.
#include <gtest/gtest.h>

#include "automation/support/live_test.h"

namespace kavrel::tests {

namespace {

using LiveWindowlessTest = LiveTest;

TEST_F(LiveWindowlessTest, OnlyEventsOfThePortAreMissing) {
    TestPort port;
    const Listener listener(parser());
    ExpectSteps(parser(), {{L"Parse", {L"$PKVRL,1\r\n"}, ""}});
    EXPECT_EQ(1U, listener->texts().size());
    Enable(port);
    port.Feed(kGgaLine);
    WaitForStatus(At(port, "4800 nmea"));
    DispatchFor(300);
    EXPECT_EQ(1U, listener->events().size());
    Disable();

    ExpectSteps(parser(), {{L"=NoEvents", {true}, ""}});
    Enable(port);
    port.StartStream(kGgaLine, 50);
    ExpectSteps(Call(parser(), L"GetGpsFix", {60000, 3}).value.object(),
                {{L"FixType", {}, "I4 3"}});
    WaitForStatus(At(port, "4800 nmea fix"));
}

}  // namespace

}  // namespace kavrel::tests
