#include "automation/support/test_port.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <mutex>

namespace kavrel::tests {

namespace {

constexpr size_t kAnswerSize = 64;
constexpr DWORD kAnswerMs = 10000;

// The connection to the server (tools/port_server.py), one for the program.
class Server {
  public:
    static Server& Instance() {
        static Server server;
        return server;
    }

    // The answer to a request, without "ok". Bytes are sent behind the request; with `answered` the
    // answer's number counts bytes that come behind it, and they go there.
    std::string Ask(const std::string& request, std::string_view bytes, std::string* answered) {
        const std::lock_guard lock(mutex_);
        if (comm_ == INVALID_HANDLE_VALUE) return {};
        std::string answer(kAnswerSize, '\0');
        if (!Send(request + '\n') || !Send(bytes) || !Receive(answer)) {
            ADD_FAILURE() << request << ": the server of ports does not answer";
            return {};
        }
        answer.erase(answer.find_last_not_of(' ') + 1);
        if (!answer.starts_with("ok")) {
            ADD_FAILURE() << request << ": " << answer;
            return {};
        }
        answer.erase(0, 3);
        if (answered != nullptr) {
            answered->resize(std::strtoul(answer.c_str(), nullptr, 10));
            EXPECT_TRUE(Receive(*answered));
        }
        return answer;
    }

  private:
    Server()
        : comm_(CreateFileW(L"COM9:", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                            FILE_ATTRIBUTE_NORMAL, nullptr)) {
        if (comm_ == INVALID_HANDLE_VALUE) {
            ADD_FAILURE() << "tools/run_with_ports.py runs programs that need serial ports";
        }
        // A read waits for all bytes.
        COMMTIMEOUTS timeouts = {0, 0, kAnswerMs, 0, kAnswerMs};
        SetCommTimeouts(comm_, &timeouts);
    }
    ~Server() { CloseHandle(comm_); }

    bool Send(std::string_view bytes) {
        DWORD sent = 0;
        const auto size = static_cast<DWORD>(bytes.size());
        return size == 0 || (WriteFile(comm_, bytes.data(), size, &sent, nullptr) && sent == size);
    }

    bool Receive(std::string& bytes) {
        DWORD count = 0;
        const auto size = static_cast<DWORD>(bytes.size());
        return size == 0 || (ReadFile(comm_, bytes.data(), size, &count, nullptr) && count == size);
    }

    std::mutex mutex_;
    HANDLE comm_;
};

// Asks until it is done or the time is over.
template <typename Done>
void Poll(int timeoutMs, Done done) {
    const DWORD start = GetTickCount();
    while (!done() && GetTickCount() - start < static_cast<DWORD>(timeoutMs))
        Sleep(2);
}

}  // namespace

TestPort::TestPort() : number_(std::atoi(Server::Instance().Ask("- open", {}, nullptr).c_str())) {}

TestPort::~TestPort() {
    Ask("close");
}

std::uint64_t TestPort::Feed(std::string_view bytes) {
    EXPECT_EQ(bytes.size(), Offer(bytes, 20000)) << "bytes that nobody read";
    const std::string left = Ask("left");
    return std::strtoull(left.c_str() + left.find(' '), nullptr, 10);
}

size_t TestPort::Offer(std::string_view bytes, int timeoutMs) {
    Ask("feed " + std::to_string(bytes.size()), bytes);
    const auto left = [this] { return std::strtoul(Ask("left").c_str(), nullptr, 10); };
    Poll(timeoutMs, [&] { return left() == 0; });
    StopStream();
    return bytes.size() - left();
}

void TestPort::StartStream(std::string_view text, int everyMs) {
    Ask("stream " + std::to_string(text.size()) + ' ' + std::to_string(everyMs), text);
}

void TestPort::StopStream() {
    Ask("stop");
}

std::string TestPort::Written(size_t count, int timeoutMs) {
    std::string written;
    Poll(timeoutMs, [&] {
        std::string bytes;
        Server::Instance().Ask(std::to_string(number_) + " written", {}, &bytes);
        written += bytes;
        return written.size() >= count;
    });
    return written;
}

void TestPort::SetListening(bool isOn) {
    Ask(isOn ? "listen 1" : "listen 0");
}

void TestPort::SetLines(const InputLines& lines) {
    std::string request = "lines";
    if (lines.cts) request += " CTS";
    if (lines.dsr) request += " DSR";
    if (lines.ring) request += " RING";
    if (lines.rlsd) request += " RLSD";
    Ask(request);
}

OutputLines TestPort::Lines() {
    const std::string names = Ask("outputs");
    return {names.find("DTR") != std::string::npos, names.find("RTS") != std::string::npos};
}

int TestPort::BaudRate() {
    return std::atoi(Ask("baud").c_str());
}

int TestPort::Breaks() {
    return std::atoi(Ask("breaks").c_str());
}

void TestPort::Unplug() {
    Ask("unplug");
}

void TestPort::PlugIn() {
    Ask("plug");
}

std::uint64_t TestPort::Time() {
    return std::strtoull(Server::Instance().Ask("- time", {}, nullptr).c_str(), nullptr, 10);
}

std::string TestPort::Ask(const std::string& verb, std::string_view bytes) {
    return Server::Instance().Ask(std::to_string(number_) + ' ' + verb, bytes, nullptr);
}

}  // namespace kavrel::tests
