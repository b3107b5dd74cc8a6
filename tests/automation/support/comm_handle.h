// CommHandle: a serial port opened by the platform's own functions.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "automation/support/test_port.h"

namespace kavrel::tests {

class CommHandle {
  public:
    explicit CommHandle(const std::wstring& name)
        : handle_(CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr)),
          error_(handle_ == INVALID_HANDLE_VALUE ? GetLastError() : 0) {}
    ~CommHandle() { Close(); }
    CommHandle(const CommHandle&) = delete;
    CommHandle& operator=(const CommHandle&) = delete;

    void Close() {
        if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
        handle_ = INVALID_HANDLE_VALUE;
    }

    // Why it could not be opened; 0: it is open.
    DWORD error() const { return error_; }
    HANDLE get() const { return handle_; }

    // At that rate, and so that a read waits for all bytes but at most 200 ms.
    void Configure(DWORD baudRate, DWORD writeTimeoutMs = 5000) {
        DCB state = {};
        state.DCBlength = sizeof state;
        EXPECT_TRUE(GetCommState(handle_, &state));
        state.BaudRate = baudRate;
        state.ByteSize = 8;
        state.fDtrControl = DTR_CONTROL_ENABLE;
        state.fRtsControl = RTS_CONTROL_ENABLE;
        EXPECT_TRUE(SetCommState(handle_, &state));
        COMMTIMEOUTS timeouts = {0, 0, 200, 0, writeTimeoutMs};
        EXPECT_TRUE(SetCommTimeouts(handle_, &timeouts));
    }

    // One read of at most 256 bytes.
    std::string Read() {
        char buffer[256];
        DWORD count = 0;
        if (!ReadFile(handle_, buffer, sizeof buffer, &count, nullptr)) {
            return "error " + std::to_string(GetLastError());
        }
        return {buffer, count};
    }

    // The number of bytes that the port took.
    size_t Write(const std::string& bytes) {
        DWORD count = 0;
        EXPECT_TRUE(
            WriteFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr));
        return count;
    }

  private:
    HANDLE handle_;
    DWORD error_;
};

}  // namespace kavrel::tests
