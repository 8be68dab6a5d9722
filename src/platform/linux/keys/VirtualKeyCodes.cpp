#include "platform/linux/keys/VirtualKeyCodes.h"

#include <array>

namespace orlune {

namespace {

struct Row {
    std::uint16_t virtualKey;
    std::uint16_t evdevCode;
};

// By virtual key code; the second number is the kernel's (linux/input-event-codes.h).
constexpr std::array rows = {
    Row{0, 30},    // A
    Row{1, 31},    // S
    Row{2, 32},    // D
    Row{3, 33},    // F
    Row{4, 35},    // H
    Row{5, 34},    // G
    Row{6, 44},    // Z
    Row{7, 45},    // X
    Row{8, 46},    // C
    Row{9, 47},    // V
    Row{10, 86},   // the key between left Shift and Z
    Row{11, 48},   // B
    Row{12, 16},   // Q
    Row{13, 17},   // W
    Row{14, 18},   // E
    Row{15, 19},   // R
    Row{16, 21},   // Y
    Row{17, 20},   // T
    Row{18, 2},    // 1
    Row{19, 3},    // 2
    Row{20, 4},    // 3
    Row{21, 5},    // 4
    Row{22, 7},    // 6
    Row{23, 6},    // 5
    Row{24, 13},   // =
    Row{25, 10},   // 9
    Row{26, 8},    // 7
    Row{27, 12},   // -
    Row{28, 9},    // 8
    Row{29, 11},   // 0
    Row{30, 27},   // ]
    Row{31, 24},   // O
    Row{32, 22},   // U
    Row{33, 26},   // [
    Row{34, 23},   // I
    Row{35, 25},   // P
    Row{36, 28},   // Return
    Row{37, 38},   // L
    Row{38, 36},   // J
    Row{39, 40},   // '
    Row{40, 37},   // K
    Row{41, 39},   // ;
    Row{42, 43},   // backslash
    Row{43, 51},   // ,
    Row{44, 53},   // /
    Row{45, 49},   // N
    Row{46, 50},   // M
    Row{47, 52},   // .
    Row{48, 15},   // Tab
    Row{49, 57},   // Space
    Row{50, 41},   // `
    Row{51, 14},   // Backspace
    Row{53, 1},    // Escape
    Row{54, 126},  // right Super
    Row{55, 125},  // left Super
    Row{56, 42},   // left Shift
    Row{57, 58},   // Caps Lock
    Row{58, 56},   // left Alt
    Row{59, 29},   // left Control
    Row{60, 54},   // right Shift
    Row{61, 100},  // right Alt
    Row{62, 97},   // right Control
    Row{63, 464},  // Fn
    Row{64, 187},  // F17
    Row{65, 83},   // keypad .
    Row{67, 55},   // keypad *
    Row{69, 78},   // keypad +
    Row{71, 69},   // Num Lock
    Row{72, 115},  // volume up
    Row{73, 114},  // volume down
    Row{74, 113},  // mute
    Row{75, 98},   // keypad /
    Row{76, 96},   // keypad Enter
    Row{78, 74},   // keypad -
    Row{79, 188},  // F18
    Row{80, 189},  // F19
    Row{81, 117},  // keypad =
    Row{82, 82},   // keypad 0
    Row{83, 79},   // keypad 1
    Row{84, 80},   // keypad 2
    Row{85, 81},   // keypad 3
    Row{86, 75},   // keypad 4
    Row{87, 76},   // keypad 5
    Row{88, 77},   // keypad 6
    Row{89, 71},   // keypad 7
    Row{90, 190},  // F20
    Row{91, 72},   // keypad 8
    Row{92, 73},   // keypad 9
    Row{93, 124},  // yen
    Row{94, 89},   // underscore, left of right Shift
    Row{95, 121},  // keypad comma
    Row{96, 63},   // F5
    Row{97, 64},   // F6
    Row{98, 65},   // F7
    Row{99, 61},   // F3
    Row{100, 66},  // F8
    Row{101, 67},  // F9
    Row{102, 94},  // alphanumeric, left of Space
    Row{103, 87},  // F11
    Row{104, 92},  // kana, right of Space
    Row{105, 183}, // F13
    Row{106, 186}, // F16
    Row{107, 184}, // F14
    Row{109, 68},  // F10
    Row{110, 127}, // menu
    Row{111, 88},  // F12
    Row{113, 185}, // F15
    Row{114, 110}, // Insert, in the place of Help
    Row{115, 102}, // Home
    Row{116, 104}, // Page Up
    Row{117, 111}, // Delete
    Row{118, 62},  // F4
    Row{119, 107}, // End
    Row{120, 60},  // F2
    Row{121, 109}, // Page Down
    Row{122, 59},  // F1
    Row{123, 105}, // left arrow
    Row{124, 106}, // right arrow
    Row{125, 108}, // down arrow
    Row{126, 103}, // up arrow
};

/// Keys of a PC that sit where a Mac's keyboard has another.
constexpr std::array aliases = {
    Row{105, 99},  // Print Screen
    Row{107, 70},  // Scroll Lock
    Row{113, 119}, // Pause
};

} // namespace

std::optional<std::uint16_t> keycodeForVirtualKey(std::uint16_t virtualKey) {
    for (const auto& row : rows) {
        if (row.virtualKey == virtualKey) {
            return static_cast<std::uint16_t>(row.evdevCode + keycodeOffset);
        }
    }
    return std::nullopt;
}

std::optional<std::uint16_t> virtualKeyForKeycode(std::uint16_t keycode) {
    const auto find = [keycode](const auto& table) -> std::optional<std::uint16_t> {
        for (const auto& row : table) {
            if (row.evdevCode + keycodeOffset == keycode) {
                return row.virtualKey;
            }
        }
        return std::nullopt;
    };
    const auto found = find(rows);
    return found ? found : find(aliases);
}

} // namespace orlune
