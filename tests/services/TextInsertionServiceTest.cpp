#include "services/TextInsertionService.h"

#include "platform/memory/MemoryAccessibility.h"
#include "platform/memory/MemoryKeyEventPosting.h"
#include "platform/memory/MemoryPasteboard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orlune {
namespace {

using testing::ElementsAre;
using InsertionError = TextInsertionService::InsertionError;
using Case = InsertionError::Case;

class TextInsertionServiceTest : public testing::Test {
  protected:
    std::optional<InsertionError> failureOf(const std::string& text) {
        try {
            service.insert(text);
        } catch (const InsertionError& error) {
            return error;
        }
        return std::nullopt;
    }

    MemoryEvents log = makeMemoryEvents();
    MemoryAccessibility accessibility{log};
    MemoryPasteboard pasteboard{log};
    MemoryKeyEventPosting keyEvents{log};
    TextInsertionService service{accessibility, pasteboard, keyEvents};
};

TEST_F(TextInsertionServiceTest, TheTextIsOnThePasteboardBeforeCommandVGoesDownAndUp) {
    pasteboard.setString("what was there before");
    log->clear();

    service.insert("Größe 日本 ✓");

    EXPECT_THAT(*log, ElementsAre("clear", "set Größe 日本 ✓", "down 9", "up 9"));
    for (const auto& [location, event] : keyEvents.posted()) {
        EXPECT_EQ(location, EventTapLocation::hidEventTap);
        EXPECT_EQ(event.flags, ModifierFlags::command);
    }
    EXPECT_EQ(pasteboard.contents(), "Größe 日本 ✓");
}

TEST_F(TextInsertionServiceTest, AnEmptyTextIsPastedAsAnEmptyString) {
    service.insert("");
    EXPECT_THAT(*log, ElementsAre("clear", "set ", "down 9", "up 9"));
}

TEST_F(TextInsertionServiceTest, WithoutTrustEveryCallPromptsAndLeavesThePasteboardAlone) {
    pasteboard.setString("kept");
    log->clear();
    accessibility.reason = "the display lets nobody type";

    EXPECT_EQ(failureOf("one"), InsertionError(Case::accessibilityPermission));
    EXPECT_EQ(failureOf("two"), InsertionError(Case::accessibilityPermission));

    EXPECT_THAT(*log, ElementsAre("prompt", "prompt"));
    EXPECT_EQ(pasteboard.contents(), "kept");

    accessibility.reason.clear();
    EXPECT_EQ(failureOf("three"), std::nullopt);
    EXPECT_EQ(pasteboard.contents(), "three");
}

struct Refusal {
    std::string name;
    std::function<void(MemoryPasteboard&, MemoryKeyEventPosting&)> apply;
    std::optional<std::string> contentsAfterwards;
};

class TextInsertionRefusalTest : public TextInsertionServiceTest,
                                 public testing::WithParamInterface<Refusal> {};

TEST_P(TextInsertionRefusalTest, FailsWithoutPostingAnyKey) {
    GetParam().apply(pasteboard, keyEvents);

    const auto failure = failureOf("text");

    EXPECT_EQ(failure, InsertionError(Case::eventCreation));
    EXPECT_TRUE(keyEvents.posted().empty());
    EXPECT_EQ(pasteboard.contents(), GetParam().contentsAfterwards);
}

INSTANTIATE_TEST_SUITE_P(
    , TextInsertionRefusalTest,
    testing::Values(Refusal{"noSourceLeavesTheTextForPastingByHand",
                            [](auto&, auto& keys) { keys.refusesSource = true; }, "text"},
                    Refusal{"noKeyDownLeavesTheTextForPastingByHand",
                            [](auto&, auto& keys) { keys.refusesKeyDown = true; }, "text"},
                    Refusal{"noKeyUpMeansNoKeyDownEither",
                            [](auto&, auto& keys) { keys.refusesKeyUp = true; }, "text"},
                    Refusal{"noChordInTheLayoutLeavesTheTextForPastingByHand",
                            [](auto&, auto& keys) { keys.refusesPosting = true; }, "text"},
                    Refusal{"aRefusedClipboardIsNeverPasted",
                            [](auto& pasteboard, auto&) { pasteboard.refuses = true; },
                            std::nullopt}),
    [](const auto& row) { return row.param.name; });

TEST(InsertionErrorTest, SaysWhatTheUserCanDo) {
    EXPECT_STREQ(InsertionError(Case::accessibilityPermission).what(),
                 "Allow Accessibility access, then try again");
    EXPECT_STREQ(InsertionError(Case::eventCreation).what(),
                 "Couldn't paste into the active application");
}

} // namespace
} // namespace orlune
