// The fields of a sentence that somebody has changed: field texts by number.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/text_view.h"

namespace kavrel {

class FieldList {
  public:
    // The text stored for a number; empty when there is none.
    TextView Find(std::int32_t number) const;

    // Stores a text, instead of the one that the number may have.
    void Set(std::int32_t number, const TextView& text);

    // Whether some text has characters of more than 8 bits.
    bool HasWideText() const;

  private:
    struct Entry {
        std::int32_t number;
        std::string text;
        std::u16string wideText;  // empty unless the text needs it
    };

    std::vector<Entry> entries_;  // by ascending number
};

}  // namespace kavrel
