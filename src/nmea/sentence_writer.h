// SentenceWriter: puts a sentence together, field by field.
//
// Numbers have a fixed count of decimals and never depend on a locale; a number that is not finite
// leaves its field empty. Text is not escaped: a "," in it would open a field.
#pragma once

#include <string>
#include <string_view>

namespace kavrel {

class SentenceWriter {
  public:
    // `address`: talker and formatter, such as "GPGGA".
    explicit SentenceWriter(std::string_view address);

    SentenceWriter& Text(std::string_view text);
    SentenceWriter& Empty() { return Text({}); }
    SentenceWriter& Number(double value, int decimals, int minWholeDigits = 1);

    // Two fields each: ddmm.mmmmm or dddmm.mmmmm, and the hemisphere letter by the sign.
    SentenceWriter& Latitude(double degrees);
    SentenceWriter& Longitude(double degrees);

    // The whole sentence with its checksum, without CR LF.
    std::string Finish() const;

  private:
    void Angle(double degrees, int degreeDigits);

    std::string text_;
};

}  // namespace kavrel
