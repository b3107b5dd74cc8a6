// TestPort: a serial port that Windows programs of this prefix can open, and its far end.
//
// For programs run by tools/run_with_ports.py (flag SERIAL of their CMake function), which serves
// them from the build machine's side.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kavrel::tests {

// A fresh port for as long as the object lives; at most seven at a time. What goes wrong on the
// server's side fails the test. Thread safety: different ports may be used by different threads.
class TestPort {
  public:
    TestPort();
    ~TestPort();
    TestPort(const TestPort&) = delete;
    TestPort& operator=(const TestPort&) = delete;

    int number() const { return number_; }
    // The device's: "COM2:".
    std::wstring name() const { return L"COM" + std::to_wstring(number_) + L":"; }

    // Opens and closes it. The platform's error; 0: nobody else has it open.
    std::uint32_t ErrorOfOpening() const;

    // Gives the bytes to the program and waits until it has taken them all, 20 seconds at most.
    void Feed(std::string_view bytes);

    // Feeds the text again and again, once each so many milliseconds, in the background; 0: as
    // fast as it is read.
    void StartStream(std::string_view text, int everyMs);
    void StopStream() { Ask("stop"); }

    // What the program wrote since the last call, as soon as it is so many bytes, or what there is
    // after that time.
    std::string Written(size_t count, int timeoutMs = 5000);

    // Sets the input lines: those of "CTS DSR RING RLSD" that are on.
    void SetLines(const std::string& names) { Ask("lines " + names); }
    // The output lines that are on: "DTR RTS".
    std::string Lines() { return Ask("outputs"); }
    int BaudRate() { return std::stoi(Ask("baud")); }
    int Breaks() { return std::stoi(Ask("breaks")); }

    // The device is pulled out: reads of who has it open fail, and the port is no longer there.
    // Plugging in again brings another device under the same number.
    void Unplug() { Ask("unplug"); }
    void PlugIn() { Ask("plug"); }

  private:
    std::string Ask(const std::string& verb, std::string_view bytes = {});

    int number_;
};

}  // namespace kavrel::tests
