#include "app/remote/Status.h"

#include "tests/support/DictationHarness.h"

#include <gmock/gmock.h>

namespace orlune {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(StatusTest, reportsPhaseAndSettingsAndNeverWhatWasSaid) {
    DictationHarness harness;
    EXPECT_EQ(statusJson(harness.state()),
              R"({"phase":"idle","message":null,"statusMessage":"Press Fn to speak",)"
              R"("activationMode":"tapToToggle","shortcut":"fn","enabled":true,)"
              R"("intentCheckEnabled":true,"hasDeepgramAPIKey":true,"version":")" ORLUNE_VERSION
              R"("})");

    std::string told;
    harness.begin();
    harness.result("the launch code is somehow sesame", /*isFinal=*/false);
    told += statusJson(harness.state());
    harness.cancel();
    EXPECT_THAT(statusJson(harness.state()),
                HasSubstr(R"("phase":"failure","message":"Cancelled")"));
    harness.dictate("the launch code is somehow sesame");
    ASSERT_EQ(harness.phase(), "reviewing The launch code is somehow sesame.");
    told += statusJson(harness.state());
    harness.confirm();
    told += statusJson(harness.state());
    for (const auto* phase : {"listening", "reviewing", "success"}) {
        EXPECT_THAT(told, HasSubstr(std::string(R"("phase":")") + phase + '"'));
    }
    EXPECT_THAT(told, Not(HasSubstr("sesame")));
}

TEST(StatusTest, isOneReadableLine) {
    DictationHarness harness("");
    EXPECT_EQ(statusLine(statusJson(harness.state())),
              "idle: Press Fn to speak (no Deepgram API key)");
    harness.state().setHasDeepgramAPIKey(true);
    harness.state().setEnabled(false);
    EXPECT_EQ(statusLine(statusJson(harness.state())), "idle: Press Fn to speak (switched off)");
    for (const auto* text : {"", "[]", "{}", R"({"phase":1,"statusMessage":"x"})"}) {
        EXPECT_EQ(statusLine(text), std::nullopt) << text;
    }
}

} // namespace
} // namespace orlune
