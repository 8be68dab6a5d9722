#include "platform/linux/keys/VirtualKeyCodes.h"

#include <gtest/gtest.h>

#include <string>

namespace orlune {
namespace {

struct Place {
    std::string name;
    std::uint16_t virtualKey;
    std::uint16_t keycode;
};

class VirtualKeyCodesTest : public testing::TestWithParam<Place> {};

TEST_P(VirtualKeyCodesTest, AreTheSamePlaceInBothDirections) {
    EXPECT_EQ(keycodeForVirtualKey(GetParam().virtualKey), GetParam().keycode);
    EXPECT_EQ(virtualKeyForKeycode(GetParam().keycode), GetParam().virtualKey);
}

// The keycodes are those of `xev` on a PC keyboard.
INSTANTIATE_TEST_SUITE_P(
    , VirtualKeyCodesTest,
    testing::Values(Place{"A", 0, 38}, Place{"V", 9, 55}, Place{"digit5", 23, 14},
                    Place{"digit6", 22, 15}, Place{"Return", 36, 36}, Place{"Backspace", 51, 22},
                    Place{"Space", 49, 65}, Place{"Escape", 53, 9}, Place{"leftSuper", 55, 133},
                    Place{"rightSuper", 54, 134}, Place{"rightControl", 62, 105},
                    Place{"rightAlt", 61, 108}, Place{"F1", 122, 67}, Place{"F12", 111, 96},
                    Place{"Insert", 114, 118}, Place{"up", 126, 111}, Place{"keypad7", 89, 79},
                    Place{"keypadEnter", 76, 104}, Place{"Fn", 63, 464 + keycodeOffset}),
    [](const auto& row) { return row.param.name; });

TEST(VirtualKeyCodesTableTest, EveryKeyComesBackFromItsKeycode) {
    int known = 0;
    for (std::uint16_t virtualKey = 0; virtualKey < 256; ++virtualKey) {
        if (const auto keycode = keycodeForVirtualKey(virtualKey)) {
            ++known;
            EXPECT_EQ(virtualKeyForKeycode(*keycode), virtualKey);
        }
    }
    EXPECT_GT(known, 100);
    EXPECT_EQ(keycodeForVirtualKey(52), std::nullopt);
    EXPECT_EQ(virtualKeyForKeycode(107), 105) << "Print Screen is in the place of F13";
    EXPECT_EQ(virtualKeyForKeycode(0), std::nullopt);
}

} // namespace
} // namespace orlune
