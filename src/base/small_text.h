// SmallText: an owned text of any length that needs no memory of its own up to `Inline` characters.
//
// Receivers' sentences are short and come by the million; one allocation each is spared by it.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <string_view>

namespace kavrel {

template <std::size_t Inline>
class SmallText {
  public:
    SmallText() = default;
    SmallText(const SmallText&) = delete;
    SmallText& operator=(const SmallText&) = delete;

    std::string_view view() const { return {data_, size_}; }
    const char* data() const { return data_; }

    void Assign(std::string_view text) { std::copy(text.begin(), text.end(), Resize(text.size())); }

    void Clear() { Resize(0); }

    // Makes room for `size` characters and returns where they go. What was there is lost.
    char* Resize(std::size_t size) {
        large_.reset(size > Inline ? new char[size] : nullptr);
        size_ = size;
        data_ = size > Inline ? large_.get() : inline_.data();
        return data_;
    }

  private:
    std::unique_ptr<char[]> large_;
    std::array<char, Inline> inline_;
    char* data_ = inline_.data();
    std::size_t size_ = 0;
};

}  // namespace kavrel
