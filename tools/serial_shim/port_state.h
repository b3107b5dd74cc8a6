// What the shim and the maker of the ports (tools/serial_ports.py, which packs the same fields)
// tell each other about one pseudo terminal.
//
// Its home is the file $TTYSIM_DIR/<number of the pseudo terminal>. Both sides map it. The file is
// used again, never replaced, when the number is: mappings last as long as their process.
#pragma once

#include <atomic>
#include <cstdint>

namespace ttysim {

struct PortState {
    std::atomic<std::uint32_t> isServed;     // 0: a terminal like any other
    std::atomic<std::uint32_t> inputs;       // lines CTS, DSR, RI and CD, as TIOCM_ bits
    std::atomic<std::uint32_t> outputs;      // lines DTR and RTS, as TIOCM_ bits
    std::atomic<std::uint32_t> isUnplugged;  // the device is gone; all that is left is to close
    std::atomic<std::uint32_t> breaks;       // how often a break was begun
};
static_assert(sizeof(PortState) == 20 && std::atomic<std::uint32_t>::is_always_lock_free);

// The state of a pseudo terminal's open file; null for anything else. Any thread.
PortState* StateOf(int file);

// The number of a pseudo terminal's open file, below kMaxPorts; -1 for anything else.
inline constexpr int kMaxPorts = 1024;
int NumberOf(int file);

}  // namespace ttysim
