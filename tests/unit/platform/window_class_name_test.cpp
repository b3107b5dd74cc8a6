#include "platform/window_class_name.h"

#include <gtest/gtest.h>

#include <string>

namespace kavrel {
namespace {

// Worked out by hand: 0x01DD0000 + 1338356 = 0x01F16BF4.
TEST(WindowClassNameTest, HasTheSevenParts) {
    const WindowClassName name = MakeWindowClassName({.systemTime = 0x01DD0000'89ABCDEF,
                                                      .tickCountMs = 0x00FEDCBA,
                                                      .firstRandom = 0x1234567,
                                                      .secondRandom = 0x8});
    EXPECT_EQ(std::u16string(name.data()), u"89abcdef-6bf4-11f1-4567-00fedcba0008");
}

}  // namespace
}  // namespace kavrel
