// A parser where no window can be made: no events from the port, and everything else.
#include <gtest/gtest.h>

#include <string>

#include "automation/support/live_test.h"

namespace kavrel::tests {

namespace {

using LiveWindowlessTest = LiveTest;

TEST_F(LiveWindowlessTest, ParseRaisesEvents) {
    const Listener listener(parser());
    ExpectSteps(parser(), {{L"Parse", {L"$PKVRL,1\r\n"}, ""}});
    EXPECT_EQ(1U, listener->texts().size());
}

TEST_F(LiveWindowlessTest, ThePortRaisesNone) {
    TestPort port;
    const Listener listener(parser());
    Enable(port);
    port.Feed(kGgaLine);
    EXPECT_TRUE(WaitForStatus(std::to_string(port.number()) + "@4800 nmea"));
    DispatchFor(300);
    EXPECT_EQ(0U, listener->events().size());
    Disable();
}

TEST_F(LiveWindowlessTest, QueriesAreServed) {
    TestPort port;
    ExpectSteps(parser(), {{L"=NoEvents", {true}, ""}});
    Enable(port);
    port.StartStream(kGgaLine, 50);
    ExpectSteps(Call(parser(), L"GetGpsFix", {60000, 3}).value.object(),
                {{L"FixType", {}, "I4 3"}});
    EXPECT_EQ(std::to_string(port.number()) + "@4800 nmea fix", Status());
    ExpectSteps(parser(), {{L"WriteData", {L"$"}, ""}});
    EXPECT_EQ("$", port.Written(1));
}

}  // namespace

}  // namespace kavrel::tests
