#include "base/small_text.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>

namespace kavrel {
namespace {

// Every length around the limit, growing and shrinking across it.
TEST(SmallText, HoldsAnyLength) {
    SmallText<8> text;
    for (const std::size_t length : {0, 1, 7, 8, 9, 100, 8, 9, 0, 70000, 3}) {
        std::string expected(length, 'x');
        std::iota(expected.begin(), expected.end(), '\0');
        text.Assign(expected);
        EXPECT_EQ(text.view(), expected) << length;
        EXPECT_EQ(text.Resize(length), text.data());
        EXPECT_EQ(text.view().size(), length);
    }
    text.Clear();
    EXPECT_EQ(text.view(), "");
}

}  // namespace
}  // namespace kavrel
