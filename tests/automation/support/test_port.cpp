#include "automation/support/test_port.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <mutex>

namespace kavrel::tests {

namespace {

constexpr size_t kAnswerSize = 64;

HANDLE Open(const std::wstring& name) {
    return CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

// The connection to the server (tools/port_server.py), one for the program.
class Server {
  public:
    Server() : comm_(Open(L"COM9:")) {
        // A read waits for all bytes.
        COMMTIMEOUTS timeouts = {0, 0, 10000, 0, 10000};
        EXPECT_TRUE(SetCommTimeouts(comm_, &timeouts))
            << "tools/run_with_ports.py runs programs that need serial ports";
    }

    // The answer to a request, without "ok". Bytes are sent behind the request; to "written" the
    // answer is the bytes that come behind it.
    std::string Ask(const std::string& request, std::string_view bytes) {
        const std::lock_guard lock(mutex_);
        std::string answer(kAnswerSize, '\0');
        if (!Send(request + '\n') || !Send(bytes) || !Receive(answer) ||
            !answer.starts_with("ok")) {
            ADD_FAILURE() << request << ": " << answer;
            return "0";
        }
        answer.erase(answer.find_last_not_of(' ') + 1).erase(0, 3);
        if (!request.ends_with("written")) return answer;
        std::string written(std::strtoul(answer.c_str(), nullptr, 10), '\0');
        EXPECT_TRUE(Receive(written));
        return written;
    }

  private:
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

std::string AskServer(const std::string& request, std::string_view bytes = {}) {
    static Server server;
    return server.Ask(request, bytes);
}

// Asks until it is done or the time is over.
template <typename Done>
bool Poll(int timeoutMs, Done done) {
    const DWORD start = GetTickCount();
    while (!done()) {
        if (GetTickCount() - start >= static_cast<DWORD>(timeoutMs)) return false;
        Sleep(2);
    }
    return true;
}

}  // namespace

TestPort::TestPort() : number_(std::stoi(AskServer("- open"))) {}

TestPort::~TestPort() {
    Ask("close");
}

std::uint32_t TestPort::ErrorOfOpening() const {
    const HANDLE comm = Open(name());
    if (comm == INVALID_HANDLE_VALUE) return GetLastError();
    CloseHandle(comm);
    return 0;
}

void TestPort::Feed(std::string_view bytes) {
    Ask("feed " + std::to_string(bytes.size()), bytes);
    EXPECT_TRUE(Poll(20000, [this] { return Ask("left") == "0"; })) << "bytes that nobody read";
}

void TestPort::StartStream(std::string_view text, int everyMs) {
    Ask("stream " + std::to_string(text.size()) + ' ' + std::to_string(everyMs), text);
}

std::string TestPort::Written(size_t count, int timeoutMs) {
    std::string written;
    Poll(timeoutMs, [&] {
        written += Ask("written");
        return written.size() >= count;
    });
    return written;
}

std::string TestPort::Ask(const std::string& verb, std::string_view bytes) {
    return AskServer(std::to_string(number_) + ' ' + verb, bytes);
}

}  // namespace kavrel::tests
