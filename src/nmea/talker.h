// The two letters in front of a sentence formatter: "GP", "GL"...
#pragma once

namespace kavrel {

struct Talker {
    char first = '\0';
    char second = '\0';

    bool operator==(const Talker&) const = default;
};

}  // namespace kavrel
