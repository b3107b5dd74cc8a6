#include "automation/support/live_test.h"

#include <windows.h>

#include <chrono>
#include <cstdio>

namespace kavrel::tests {

namespace {

std::string DescribeStatus(IDispatch* status) {
    std::string text = std::to_string(Get(status, L"ComPort").value.number()) + "@" +
                       std::to_string(Get(status, L"BaudRate").value.number());
    if (Get(status, L"ValidNmea").value.number() != 0) text += " nmea";
    if (Get(status, L"ValidFix").value.number() != 0) text += " fix";
    return text;
}

}  // namespace

const std::string kGgaLine =
    Line("GPGGA,120000.00,4730.0000,N,00843.0000,E,1,08,1.1,432.5,M,47.9,M,,");
const std::string kRmcLine =
    Line("GPRMC,120001.00,A,4730.0000,N,00843.0000,E,30.0,046.8,010626,001.3,E");

std::string Line(std::string_view body) {
    unsigned sum = 0;
    for (const char c : body)
        sum ^= static_cast<unsigned char>(c);
    char end[8];
    std::snprintf(end, sizeof end, "*%02X\r\n", sum);
    return "$" + std::string(body) + end;
}

bool DispatchUntil(const std::function<bool()>& done, int timeoutMs) {
    const DWORD start = GetTickCount();
    while (!done()) {
        const DWORD passed = GetTickCount() - start;
        if (passed >= static_cast<DWORD>(timeoutMs)) return false;
        MSG message;
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            DispatchMessageW(&message);
        } else {
            // What is waited for may also be no message.
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 2, QS_ALLINPUT);
        }
    }
    return true;
}

void DispatchFor(int ms) {
    DispatchUntil([] { return false; }, ms);
}

double MillisecondsOf(const std::function<void()>& action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

std::string StatusesOf(const EventRecorder& recorder) {
    std::string all;
    for (const RecordedEvent& event : recorder.events()) {
        if (event.id != kOnComStatus) continue;
        if (!all.empty()) all += ", ";
        all += DescribeStatus(event.arguments[0].object());
    }
    return all;
}

std::string TryEnable(IDispatch* parser, int port, int rate) {
    ExpectSteps(parser, {{L"=ComPort", {port}, ""}, {L"=BaudRate", {rate}, ""}});
    return Outcome(Put(parser, L"PortEnabled", true));
}

void EnablePort(IDispatch* parser, TestPort& port, int rate) {
    ASSERT_EQ("", TryEnable(parser, port.number(), rate));
    ASSERT_EQ("", Outcome(Call(parser, L"WriteData", {L"?"})));
    EXPECT_EQ("?", port.Written(1));
}

void LiveTest::Disable() {
    EXPECT_EQ("", Outcome(Put(parser(), L"PortEnabled", false)));
}

void LiveTest::WaitForStatus(const std::string& status) {
    const auto now = [this] {
        return DescribeStatus(Call(parser(), L"GetComStatus").value.object());
    };
    DispatchUntil([&] { return now() == status; });
    EXPECT_EQ(status, now());
}

}  // namespace kavrel::tests
