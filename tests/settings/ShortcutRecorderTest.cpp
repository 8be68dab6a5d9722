// The rules of recording a shortcut, as a table of keys and answers.

#include "settings/ShortcutRecorder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orlune {
namespace {

using Flags = ModifierFlags;

constexpr std::uint16_t keyA = 0;
constexpr std::uint16_t keySpace = 49;
constexpr std::uint16_t keyEscape = 53;
constexpr std::uint16_t keyShift = 56;
constexpr std::uint16_t keyFn = 63;
constexpr Flags capsLock{std::uint64_t{1} << 16};

KeyEvent down(std::uint16_t keyCode, Flags flags = Flags::none, bool isARepeat = false) {
    return {KeyEvent::Type::keyDown, keyCode, flags, isARepeat};
}
KeyEvent up(std::uint16_t keyCode, Flags flags = Flags::none) {
    return {KeyEvent::Type::keyUp, keyCode, flags};
}
KeyEvent flags(std::uint16_t keyCode, Flags flags = Flags::none) {
    return {KeyEvent::Type::flagsChanged, keyCode, flags};
}

struct Row {
    const char* what;
    std::vector<KeyEvent> keys;
    std::string answers;
};

std::string describe(ShortcutRecorder::Answer answer) {
    return std::vector<std::string>{"ignored", "waiting", "refused", "cancelled",
                                    "captured"}[static_cast<std::size_t>(answer)];
}

TEST(ShortcutRecorderTest, followsItsRules) {
    const std::vector<Row> rows{
        {"a key needs a modifier, and may be tried again",
         {down(keyA), up(keyA), flags(keyShift, Flags::shift),
          down(keyA, Flags::shift | Flags::command)},
         "refused ignored ignored captured ⇧⌘A"},
        {"Caps Lock is no modifier", {down(keyA, capsLock)}, "refused"},
        {"Caps Lock does not become part of a shortcut",
         {down(keyA, capsLock | Flags::shift)},
         "captured ⇧A"},
        {"a key that stays down is refused once",
         {down(keyA), down(keyA, Flags::none, /*isARepeat=*/true)},
         "refused waiting"},
        {"Fn by itself is a shortcut when it comes up",
         {flags(keyFn, Flags::function), flags(keyFn)},
         "waiting captured fn"},
        {"Fn with a key is that key",
         {flags(keyFn, Flags::function), down(keySpace, Flags::function), flags(keyFn)},
         "waiting captured fn Space ignored"},
        {"an Fn that was down before does not count", {flags(keyFn)}, "waiting"},
        {"other modifiers by themselves are no shortcut",
         {flags(keyShift, Flags::shift), flags(keyShift)},
         "ignored ignored"},
        {"Escape leaves everything as it was", {down(keyEscape)}, "cancelled"},
        {"Escape is Escape whatever is held", {down(keyEscape, Flags::command)}, "cancelled"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        ShortcutRecorder recorder;
        EXPECT_EQ(recorder.receive(down(keyA, Flags::command)), ShortcutRecorder::Answer::ignored);
        recorder.begin();
        std::string answers;
        for (const auto& key : row.keys) {
            const auto answer = recorder.receive(key);
            answers += (answers.empty() ? "" : " ") + describe(answer);
            if (answer == ShortcutRecorder::Answer::captured) {
                answers += " " + recorder.shortcut()->displayName();
                EXPECT_FALSE(recorder.isRecording());
            }
        }
        EXPECT_EQ(answers, row.answers);
    }
}

TEST(ShortcutRecorderTest, aFnHeldAcrossANewStartDoesNotCount) {
    ShortcutRecorder recorder;
    recorder.begin();
    recorder.receive(flags(keyFn, Flags::function));
    recorder.begin();
    EXPECT_EQ(recorder.receive(flags(keyFn)), ShortcutRecorder::Answer::waiting);
    EXPECT_TRUE(recorder.cancel());
    EXPECT_FALSE(recorder.cancel());
}

} // namespace
} // namespace orlune
