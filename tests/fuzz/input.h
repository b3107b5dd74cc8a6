// A fuzzer's input, taken apart from the front. Behind the end everything reads as zero or empty.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace kavrel {

class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}

    bool IsAtEnd() const { return at_ == end_; }

    template <typename T>
    T Take() {
        T value{};
        const std::size_t size = std::min(sizeof(T), static_cast<std::size_t>(end_ - at_));
        std::memcpy(&value, at_, size);
        at_ += size;
        return value;
    }

    // A text of at most `limit` characters; one byte of the input tells its length.
    std::string TakeText(std::size_t limit) {
        const std::size_t wanted = Take<std::uint8_t>() % (limit + 1);
        const std::size_t length = std::min(wanted, static_cast<std::size_t>(end_ - at_));
        std::string text(reinterpret_cast<const char*>(at_), length);
        at_ += length;
        return text;
    }

    std::string TakeRest() {
        std::string text(reinterpret_cast<const char*>(at_), static_cast<std::size_t>(end_ - at_));
        at_ = end_;
        return text;
    }

  private:
    const std::uint8_t* at_;
    const std::uint8_t* end_;
};

}  // namespace kavrel
