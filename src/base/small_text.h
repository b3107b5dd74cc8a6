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

    // REQUIRES: `text` is not of this one.
    void Assign(std::string_view text) {
        size_ = text.size();
        large_.reset(size_ > Inline ? new char[size_] : nullptr);
        data_ = size_ > Inline ? large_.get() : inline_.data();
        std::copy(text.begin(), text.end(), data_);
    }

  private:
    std::unique_ptr<char[]> large_;
    std::array<char, Inline> inline_;
    char* data_ = inline_.data();
    std::size_t size_ = 0;
};

}  // namespace kavrel
