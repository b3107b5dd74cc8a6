// What tests of serial ports rely on: that Wine, the shim and the server of ports together act as
// serial ports do. No part of the library is in play here.
#include <gtest/gtest.h>

#include <thread>

#include "automation/support/comm_handle.h"

namespace kavrel::tests {

namespace {

std::string EveryByte() {
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    return bytes;
}

TEST(SerialShim, OneProgramAtATime) {
    TestPort port;
    CommHandle first(port.name());
    EXPECT_EQ(0U, first.error());
    EXPECT_EQ(DWORD{ERROR_ACCESS_DENIED}, CommHandle(port.name()).error());
    first.Close();
    EXPECT_EQ(0U, CommHandle(port.name()).error());
}

TEST(SerialShim, PortsComeAndGo) {
    std::wstring name;
    {
        TestPort port;
        name = port.name();
        EXPECT_EQ(0U, CommHandle(name).error());
        port.Unplug();
        EXPECT_EQ(DWORD{ERROR_FILE_NOT_FOUND}, CommHandle(name).error());
        port.PlugIn();
        EXPECT_EQ(0U, CommHandle(name).error());
    }
    EXPECT_EQ(DWORD{ERROR_FILE_NOT_FOUND}, CommHandle(name).error());
}

TEST(SerialShim, BytesArriveUnchanged) {
    TestPort port;
    CommHandle comm(port.name());
    comm.Configure(CBR_4800);
    port.Feed(EveryByte());
    EXPECT_EQ(EveryByte(), comm.Read());
    EXPECT_EQ(256U, comm.Write(EveryByte()));
    EXPECT_EQ(EveryByte(), port.Written(256));
}

TEST(SerialShim, SilentReadEndsInTime) {
    TestPort port;
    CommHandle comm(port.name());
    comm.Configure(CBR_4800);
    const DWORD start = GetTickCount();
    EXPECT_EQ("", comm.Read());
    EXPECT_LE(150U, GetTickCount() - start);
    port.Feed("abc");
    EXPECT_EQ("abc", comm.Read());
}

TEST(SerialShim, RateIsSeenByTheFarEnd) {
    TestPort port;
    CommHandle comm(port.name());
    for (const int rate : {4800, 9600, 19200, 38400, 57600, 115200}) {
        comm.Configure(static_cast<DWORD>(rate));
        EXPECT_EQ(rate, port.BaudRate());
    }
}

TEST(SerialShim, LinesAndBreaks) {
    TestPort port;
    CommHandle comm(port.name());
    const struct {
        InputLines lines;
        DWORD status;
    } cases[] = {{{.cts = true}, MS_CTS_ON},
                 {{.dsr = true}, MS_DSR_ON},
                 {{.ring = true}, MS_RING_ON},
                 {{.rlsd = true}, MS_RLSD_ON},
                 {{}, 0}};
    for (const auto& test : cases) {
        port.SetLines(test.lines);
        DWORD status = 99;
        EXPECT_TRUE(GetCommModemStatus(comm.get(), &status));
        EXPECT_EQ(test.status, status);
    }

    EXPECT_TRUE(EscapeCommFunction(comm.get(), CLRRTS));
    EXPECT_TRUE(EscapeCommFunction(comm.get(), SETDTR));
    EXPECT_EQ((OutputLines{.dtr = true, .rts = false}), port.Lines());
    EXPECT_TRUE(EscapeCommFunction(comm.get(), SETRTS));
    EXPECT_TRUE(EscapeCommFunction(comm.get(), CLRDTR));
    EXPECT_EQ((OutputLines{.dtr = false, .rts = true}), port.Lines());

    EXPECT_TRUE(EscapeCommFunction(comm.get(), SETBREAK));
    EXPECT_TRUE(EscapeCommFunction(comm.get(), CLRBREAK));
    EXPECT_TRUE(EscapeCommFunction(comm.get(), SETBREAK));
    EXPECT_EQ(2, port.Breaks());
}

TEST(SerialShim, UnpluggedPortFailsUntilPluggedInAndOpenedAgain) {
    TestPort port;
    CommHandle old(port.name());
    old.Configure(CBR_4800);
    std::thread unplug([&] {
        Sleep(50);
        port.Unplug();
    });
    std::string read;
    for (int i = 0; i < 20 && read.empty(); ++i)
        read = old.Read();
    unplug.join();
    EXPECT_EQ("error 21", read);
    DWORD status = 0;
    EXPECT_FALSE(GetCommModemStatus(old.get(), &status));

    port.PlugIn();
    EXPECT_EQ("error 21", old.Read());
    CommHandle fresh(port.name());
    ASSERT_EQ(0U, fresh.error());
    fresh.Configure(CBR_4800);
    port.Feed("back");
    EXPECT_EQ("back", fresh.Read());
}

TEST(SerialShim, FullPortTakesNoMore) {
    TestPort port;
    port.SetListening(false);
    CommHandle comm(port.name());
    comm.Configure(CBR_4800, 300);
    const std::string text(200000, 'x');
    const size_t taken = comm.Write(text);
    EXPECT_GT(text.size(), taken);
    port.SetListening(true);
    EXPECT_EQ(taken, port.Written(taken).size());
    EXPECT_EQ(5U, comm.Write("again"));
    EXPECT_EQ("again", port.Written(5));
}

TEST(SerialShim, FeedingEndsWhenNobodyReads) {
    TestPort port;
    CommHandle comm(port.name());
    const std::string text(200000, 'x');
    const size_t taken = port.Offer(text, 100);
    EXPECT_GT(text.size(), taken);
    // Of what waits, everything is thrown away.
    EXPECT_TRUE(PurgeComm(comm.get(), PURGE_RXCLEAR));
    comm.Configure(CBR_4800);
    EXPECT_EQ("", comm.Read());
}

TEST(SerialShim, StreamsRunBesideEachOther) {
    TestPort ports[7];
    for (TestPort& port : ports)
        port.StartStream("text of " + std::to_string(port.number()), 0);
    for (TestPort& port : ports) {
        CommHandle comm(port.name());
        comm.Configure(CBR_115200);
        std::string read;
        while (read.size() < 100000)
            read += comm.Read();
        const std::string text = "text of " + std::to_string(port.number());
        size_t wrong = 0;
        for (size_t i = 0; i < read.size(); ++i)
            wrong += read[i] != text[i % text.size()];
        EXPECT_EQ(0U, wrong);
        port.StopStream();
    }
}

}  // namespace

}  // namespace kavrel::tests
