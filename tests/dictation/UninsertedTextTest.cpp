// Words that did not reach another program can be recovered for a while.

#include "tests/support/DictationHarness.h"

#include <gtest/gtest.h>

#include <chrono>

namespace orlune {
namespace {

using namespace std::chrono_literals;

TEST(UninsertedTextTest, wordsThatWereNotInsertedCanBeRecovered) {
    struct Row {
        const char* what;
        void (*lose)(DictationHarness&);
        const char* kept;
    };
    const Row rows[] = {
        {"Escape while listening",
         [](auto& harness) {
             harness.begin();
             harness.result("half of it", /*isFinal=*/false);
             harness.cancel();
         },
         "half of it"},
        {"Escape during the review",
         [](auto& harness) {
             harness.dictate("fix the form, keep it short");
             harness.cancel();
         },
         "Goal\nFix the form.\n\nRequirements\n- Keep it short."},
        {"a line that breaks",
         [](auto& harness) {
             harness.begin();
             harness.result("before the break", /*isFinal=*/true);
             harness.socket().failReceiving("gone");
             harness.socket().failSending("gone");
             harness.end();
         },
         "before the break"},
        {"a paste that fails",
         [](auto& harness) {
             harness.platform.pasteboard.refuses = true;
             harness.dictate("fix the form");
             harness.confirm();
             harness.platform.pasteboard.refuses = false;
         },
         "Fix the form."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        DictationHarness harness;
        row.lose(harness);
        ASSERT_TRUE(harness.phase().starts_with("failure"));
        harness.platform.advance(5s); // idle again for a while
        harness.begin();
        harness.cancel(); // without words, so the older ones are kept
        EXPECT_EQ(harness.state().recoverUninsertedText(), AppState::Recovery::recovered);
        EXPECT_EQ(harness.platform.pasteboard.contents(), row.kept);
    }
}

TEST(UninsertedTextTest, recoverableWordsGoWithTheNextInsertionAndAfterTenMinutes) {
    using Recovery = AppState::Recovery;
    DictationHarness harness;
    EXPECT_EQ(harness.state().recoverUninsertedText(), Recovery::nothingToRecover);
    const auto lose = [&] {
        harness.dictate("lost words");
        harness.cancel();
    };
    lose();
    harness.dictate("inserted words");
    harness.confirm();
    EXPECT_EQ(harness.state().uninsertedText(), "");

    lose();
    harness.platform.advance(9min);
    lose(); // the ten minutes begin anew
    harness.platform.advance(9min + 59s);
    harness.platform.pasteboard.refuses = true;
    EXPECT_EQ(harness.state().recoverUninsertedText(), Recovery::refused);
    EXPECT_EQ(harness.state().uninsertedText(), "Lost words.");
    harness.platform.advance(2s);
    EXPECT_EQ(harness.state().recoverUninsertedText(), Recovery::nothingToRecover);
}

} // namespace
} // namespace orlune
