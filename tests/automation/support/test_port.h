// TestPort: a serial port that Windows programs of this prefix can open, and its far end.
//
// For programs run by tools/run_with_ports.py (flag SERIAL of their CMake function), which serves
// them from the build machine's side.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kavrel::tests {

// Lines as the far end sees them.
struct InputLines {
    bool cts = false;
    bool dsr = false;
    bool ring = false;
    bool rlsd = false;
};
struct OutputLines {
    bool dtr = false;
    bool rts = false;

    bool operator==(const OutputLines&) const = default;
};

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

    // Gives the bytes to the program and waits until it has taken them all, 20 seconds at most.
    // The server's time before the first.
    std::uint64_t Feed(std::string_view bytes);

    // The same, but the program need not take them. The number that it took within that time.
    size_t Offer(std::string_view bytes, int timeoutMs);

    // Feeds the text again and again, once each so many milliseconds, in the background; 0: as
    // fast as it is read.
    void StartStream(std::string_view text, int everyMs);
    void StopStream();

    // What the program wrote since the last call, as soon as it is so many bytes, or what there is
    // after that time.
    std::string Written(size_t count, int timeoutMs = 5000);

    // Whether what the program writes is taken. If not, its writes block once some 20 KB wait.
    void SetListening(bool isOn);

    void SetLines(const InputLines& lines);
    OutputLines Lines();
    int BaudRate();
    int Breaks();

    // The device is pulled out: reads of who has it open fail, and the port is no longer there.
    // Plugging in again brings another device under the same number.
    void Unplug();
    void PlugIn();

    // The server's time: nanoseconds, of unknown origin.
    static std::uint64_t Time();

  private:
    std::string Ask(const std::string& verb, std::string_view bytes = {});

    int number_;
};

}  // namespace kavrel::tests
