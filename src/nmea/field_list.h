// The fields of a sentence that somebody has changed: field texts by number.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kavrel {

class FieldList {
  public:
    // The text stored for a number; empty when there is none.
    std::string_view Find(std::int32_t number) const;

    // Stores a text, instead of the one that the number may have.
    void Set(std::int32_t number, std::string_view text);

  private:
    struct Entry {
        std::int32_t number;
        std::string text;
    };

    std::vector<Entry> entries_;  // by ascending number
};

}  // namespace kavrel
