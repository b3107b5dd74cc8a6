#include "serial/line_settings.h"

#include <gtest/gtest.h>

#include <sstream>
#include <tuple>

#include "table.h"

namespace kavrel {
namespace {

// The fields in the order of the table.
auto FieldsOf(CommState& s) {
    return std::tie(s.BaudRate, s.fBinary, s.fParity, s.fOutxCtsFlow, s.fOutxDsrFlow, s.fDtrControl,
                    s.fDsrSensitivity, s.fTXContinueOnXoff, s.fOutX, s.fInX, s.fErrorChar, s.fNull,
                    s.fRtsControl, s.fAbortOnError, s.wReserved, s.XonLim, s.XoffLim, s.ByteSize,
                    s.Parity, s.StopBits, s.XonChar, s.XoffChar, s.ErrorChar, s.EofChar, s.EvtChar);
}

CommState StateOf(const std::string& numbers) {
    CommState state;
    std::istringstream stream(numbers);
    const auto take = [&stream](auto& field) {
        int number = 0;
        EXPECT_TRUE(stream >> number);
        field = static_cast<std::decay_t<decltype(field)>>(number);
    };
    std::apply([&](auto&... fields) { (take(fields), ...); }, FieldsOf(state));
    return state;
}

std::string TextOf(CommState state) {
    std::string text;
    std::apply(
        [&](auto... fields) {
            ((text += (text.empty() ? "" : " ") + std::to_string(fields)), ...);
        },
        FieldsOf(state));
    return text;
}

TEST(LineSettings, ControlBlock) {
    CommState found;
    for (const TableRow& row : ReadTable("serial/control_block.txt")) {
        if (row[0] == "found") {
            found = StateOf(row[1]);
            continue;
        }
        // Of each of these only the low byte counts.
        LineSettings settings{
            .baudRate = 115200, .parity = 0x102, .stopBits = 0x201, .byteSize = 0x307};
        std::istringstream(row[0]) >> settings.handshake >> settings.rts >> settings.dtr;
        CommState written = found;
        WriteControlBlock(settings, written);
        EXPECT_EQ(TextOf(written), row[1]) << row.where;
    }
}

}  // namespace
}  // namespace kavrel
