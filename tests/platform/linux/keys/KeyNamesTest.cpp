#include "platform/linux/keys/KeyNames.h"

#include <gtest/gtest.h>

namespace orlune {
namespace {

TEST(KeyNames, AreThoseThatAPersonUses) {
    EXPECT_EQ(keyInWords("Control_R"), "Right Control");
    EXPECT_EQ(keyInWords("Super_L"), "Left Super");
    EXPECT_EQ(keyInWords("Caps_Lock"), "Caps Lock");
    EXPECT_EQ(keyInWords("ISO_Level3_Shift"), "AltGr");
    EXPECT_EQ(keyInWords("F13"), "F13");
    EXPECT_TRUE(isFunctionKey("XF86Fn"));
    EXPECT_FALSE(isFunctionKey("F13"));
}

} // namespace
} // namespace orlune
