#include "base/small_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace kavrel {
namespace {

// Every length around the limit, growing and shrinking across it.
TEST(SmallText, HoldsAnyLength) {
    SmallText<8> text;
    EXPECT_EQ(text.view(), "");
    const std::size_t kLengths[] = {0, 1, 7, 8, 9, 100, 8, 9, 0, 70000, 3};
    for (const std::size_t length : kLengths) {
        std::string expected(length, 'x');
        for (std::size_t i = 0; i < length; ++i)
            expected[i] = static_cast<char>(i % 251);
        text.Assign(expected);
        EXPECT_EQ(text.view(), expected) << length;
        if (length % 2 != 0) {
            text.Clear();
            EXPECT_EQ(text.view(), "");
        }
    }
}

TEST(SmallText, ResizeGivesTheRoomThatViewShows) {
    SmallText<8> text;
    for (const std::size_t length : {std::size_t{8}, std::size_t{9}}) {
        char* const room = text.Resize(length);
        std::fill_n(room, length, 'y');
        EXPECT_EQ(text.view(), std::string(length, 'y'));
        EXPECT_EQ(text.view().data(), room);
    }
}

}  // namespace
}  // namespace kavrel
