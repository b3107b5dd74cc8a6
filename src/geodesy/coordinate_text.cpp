#include "geodesy/coordinate_text.h"

#include <array>
#include <span>

#include "base/number.h"

namespace kavrel {
namespace {

class TextBuffer {
  public:
    void Put(char c) {
        if (length_ < buffer_.size()) buffer_[length_++] = c;
    }
    void PutNumber(double value, int decimals, int minWholeDigits = 1) {
        length_ += WriteFixed(std::span(buffer_).subspan(length_), value, decimals, minWholeDigits);
    }
    std::string text() const { return {buffer_.data(), length_}; }

  private:
    std::array<char, kMaxCoordinateText> buffer_;
    std::size_t length_ = 0;
};

}  // namespace

std::string CoordinateText(CoordinateLayout layout, const Dms& value, char hemisphere) {
    int degrees = value.degrees;
    int minutes = value.minutes;
    double seconds = value.seconds + 0.0005;
    if (seconds >= 60.0) {
        seconds = 0.0;
        if (++minutes == 60) {
            minutes = 0;
            ++degrees;
        }
    }

    TextBuffer out;
    if (layout == CoordinateLayout::Dms) {
        out.PutNumber(degrees, 0);
        out.Put(' ');
        out.PutNumber(minutes, 0);
        out.Put('\'');
        out.PutNumber(seconds, 2);
        out.Put(' ');
        out.Put(hemisphere);
    } else {
        out.PutNumber(degrees, 0, layout == CoordinateLayout::NmeaLatitude ? 2 : 3);
        if (minutes < 10) out.Put('0');
        out.PutNumber(seconds * 0.016666666666666666 + minutes, 5);
    }
    return out.text();
}

}  // namespace kavrel
