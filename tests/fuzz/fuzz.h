// What every fuzzer needs: its input, taken apart, and what it does when the code under test is
// wrong.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "base/record.h"

namespace kavrel {

// Ends the program unless the condition holds, so that the fuzzer reports and keeps the input.
inline void Check(bool condition) {
    if (!condition) __builtin_trap();
}

// The input is read from the front. Behind the end everything reads as zero or empty.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size)
        : rest_(reinterpret_cast<const char*>(data), size) {}

    bool IsAtEnd() const { return rest_.empty(); }

    template <typename T>
    T Take() {
        T value{};
        const std::string_view bytes = TakeBytes(sizeof(T));
        std::memcpy(&value, bytes.data(), bytes.size());
        return value;
    }

    bool TakeBool() { return (Take<std::uint8_t>() & 1) != 0; }

    // A number below `limit`, of one byte.
    std::size_t TakeBelow(std::size_t limit) { return Take<std::uint8_t>() % limit; }

    // A text of at most `limit` characters; one byte of the input tells its length.
    std::string TakeText(std::size_t limit) { return std::string(TakeBytes(TakeBelow(limit + 1))); }

    std::string TakeRest() { return std::string(TakeBytes(rest_.size())); }

  private:
    std::string_view TakeBytes(std::size_t wanted) {
        const std::string_view bytes = rest_.substr(0, wanted);
        rest_.remove_prefix(bytes.size());
        return bytes;
    }

    std::string_view rest_;
};

// Runs a session of one input, which must leave no record behind.
template <typename Session>
int RunSession(const std::uint8_t* data, std::size_t size) {
    const std::int32_t liveBefore = Record::LiveCount();
    Session(Input(data, size)).Run();
    Check(Record::LiveCount() == liveBefore);
    return 0;
}

}  // namespace kavrel
