// The library's serial device on the ports that its tests use: the device's calls, and that Wine,
// the shim and the server of ports together act as serial ports do.
#include "platform/win32/comm_device.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <memory>
#include <string>
#include <utility>

#include "automation/support/test_port.h"

namespace kavrel::tests {

namespace {

class CommDeviceTest : public testing::Test {
  protected:
    // The platform's error.
    std::uint32_t Open() {
        const std::wstring name = port_.name();
        const CommResult result = device_->Open(std::u16string(name.begin(), name.end()).c_str());
        // A read waits for 256 bytes, but at most 200 ms.
        if (result) (void)device_->SetTimeouts({.ReadTotalTimeoutConstant = 200});
        return result.error;
    }

    std::string Read() {
        std::array<std::uint8_t, 256> buffer;
        std::size_t count = 0;
        const CommResult result = device_->Read(buffer, count);
        if (!result) return "error " + std::to_string(result.error);
        return {buffer.begin(), buffer.begin() + count};
    }

    TestPort port_;
    std::unique_ptr<CommDevice> device_ = MakeWin32CommDevice();
};

TEST_F(CommDeviceTest, BytesReadAreUnchanged) {
    std::string all;
    for (int i = 0; i < 256; ++i)
        all += static_cast<char>(i);
    ASSERT_EQ(0U, Open());
    port_.Feed(all);
    EXPECT_EQ(all, Read());
    const DWORD start = GetTickCount();
    EXPECT_EQ("", Read());
    EXPECT_LE(150U, GetTickCount() - start);
}

TEST_F(CommDeviceTest, LinesAndBreaksReachTheFarEnd) {
    ASSERT_EQ(0U, Open());
    for (const CommFunction function : {CommFunction::ClrRts, CommFunction::SetDtr})
        EXPECT_TRUE(device_->Escape(function));
    EXPECT_EQ("DTR", port_.Lines());
    for (const CommFunction function : {CommFunction::SetRts, CommFunction::ClrDtr})
        EXPECT_TRUE(device_->Escape(function));
    EXPECT_EQ("RTS", port_.Lines());
    for (const CommFunction function :
         {CommFunction::SetBreak, CommFunction::ClrBreak, CommFunction::SetBreak}) {
        EXPECT_TRUE(device_->Escape(function));
    }
    EXPECT_EQ(2, port_.Breaks());
}

TEST_F(CommDeviceTest, LinesOfTheFarEndAreSeen) {
    ASSERT_EQ(0U, Open());
    const std::pair<const char*, std::uint32_t> kCases[] = {{"CTS", kModemCtsOn},
                                                            {"DSR", kModemDsrOn},
                                                            {"RING", kModemRingOn},
                                                            {"RLSD", kModemRlsdOn},
                                                            {"", 0}};
    for (const auto& [line, status] : kCases) {
        port_.SetLines(line);
        std::uint32_t seen = 99;
        EXPECT_TRUE(device_->GetModemStatus(seen));
        EXPECT_EQ(status, seen);
    }
}

TEST_F(CommDeviceTest, UnpluggedFailsUntilPluggedInAndOpenedAgain) {
    ASSERT_EQ(0U, Open());
    EXPECT_EQ(DWORD{ERROR_ACCESS_DENIED}, port_.ErrorOfOpening());
    port_.Unplug();
    EXPECT_EQ("error 21", Read());
    std::uint32_t status = 0;
    EXPECT_FALSE(device_->GetModemStatus(status));
    EXPECT_EQ(DWORD{ERROR_FILE_NOT_FOUND}, port_.ErrorOfOpening());
    port_.PlugIn();
    EXPECT_EQ("error 21", Read());
    device_->Close();
    EXPECT_EQ("error 6", Read());
    ASSERT_EQ(0U, Open());
    port_.Feed("waiting");
    EXPECT_TRUE(device_->Purge(kPurgeRxClear));
    port_.Feed("back");
    EXPECT_EQ("back", Read());
}

}  // namespace

}  // namespace kavrel::tests
