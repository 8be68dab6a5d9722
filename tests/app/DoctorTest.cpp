#include "app/doctor/ConfigurationCheck.h"
#include "app/doctor/DesktopChecks.h"
#include "app/doctor/KeyringCheck.h"
#include "app/doctor/Report.h"
#include "app/doctor/SoundCheck.h"
#include "platform/memory/MemorySecretItems.h"
#include "services/KeychainStore.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orlune {
namespace {

using testing::HasSubstr;
using State = Finding::State;

TEST(DoctorReportTest, isATextTableAndAJsonObject) {
    const Findings findings{{"tray", State::warning, "there is none", "Start it again."},
                            {"microphone", State::ok, "\"Desk\", peak -20 dB"},
                            {"keyring", State::fail, "locked", "Unlock it."}};
    EXPECT_EQ(reportText(findings), "warning  tray        there is none\n"
                                    "                     → Start it again.\n"
                                    "ok       microphone  \"Desk\", peak -20 dB\n"
                                    "fail     keyring     locked\n"
                                    "                     → Unlock it.\n"
                                    "\n1 check of 3 failed.\n");
    EXPECT_EQ(reportJson({findings[1], findings[2]}),
              R"({"works":false,"checks":[)"
              R"({"name":"microphone","state":"ok","found":"\"Desk\", peak -20 dB","advice":null},)"
              R"({"name":"keyring","state":"fail","found":"locked","advice":"Unlock it."}]})"
              "\n");
    EXPECT_TRUE(allWork({findings[0], findings[1]})) << "a warning is no failure";
}

/// "name: state" of each finding that is not ok; each of them must say what to do.
std::string troubles(const Findings& findings) {
    std::string text;
    for (const auto& finding : findings) {
        EXPECT_EQ(finding.advice.empty(), finding.state == State::ok) << finding.name;
        if (finding.state != State::ok) {
            text += finding.name + (finding.state == State::fail ? ": fail; " : ": warning; ");
        }
    }
    return text;
}

TEST(DoctorTest, judgesDesktops) {
    DesktopFacts facts;
    facts.display.emplace();
    facts.display->hasFunctionKey = true;
    facts.hasTrayHost = true;
    EXPECT_EQ(troubles(checkDesktop(facts)), "");
    facts.display->hasFunctionKey = false;
    facts.display->whyKeysAreNotPosted = "XTEST is missing.";
    facts.hasTrayHost = false;
    EXPECT_EQ(troubles(checkDesktop(facts)),
              "seeing the shortcut: warning; pasting: fail; tray: warning; ");
    facts.display->whyKeysAreNotPosted.clear();
    facts.display->hasTray = true;
    facts.display->isXwayland = true;
    EXPECT_EQ(troubles(checkDesktop(facts)), "seeing the shortcut: warning; pasting: warning; ");
    facts.wayland.emplace();
    facts.hasPortalShortcut = false;
    EXPECT_EQ(troubles(checkDesktop(facts)), "seeing the shortcut: warning; pasting: warning; ");
    facts.hasPortalShortcut = true;
    EXPECT_EQ(troubles(checkDesktop(facts)), "pasting: warning; ");
    facts.hasPortalShortcut.reset();
    facts.hasGlobalAccel = true;
    facts.hasPortal = true;
    EXPECT_EQ(troubles(checkDesktop(facts)), "pasting: warning; ") << "not allowed yet";
    facts.isPastingAllowed = true;
    EXPECT_EQ(troubles(checkDesktop(facts)), "");
    facts = {};
    EXPECT_EQ(troubles(checkDesktop(facts)), "session: fail; seeing the shortcut: fail; pasting: "
                                             "fail; clipboard: fail; tray: warning; ");
}

TEST(DoctorTest, judgesMicrophones) {
    SoundFacts facts;
    facts.error = "Connection refused";
    EXPECT_EQ(troubles(checkSound(facts)), "sound server: fail; ");
    facts.error.clear();
    EXPECT_EQ(troubles(checkSound(facts)), "microphone: fail; ");
    facts.source = "Desk";
    EXPECT_EQ(troubles(checkSound(facts)), "microphone: fail; ") << "nothing comes";
    facts.hasDelivered = true;
    EXPECT_EQ(troubles(checkSound(facts)), "microphone: warning; ") << "silence";
    facts.peak = 0.1;
    EXPECT_EQ(checkSound(facts).back(), (Finding{"microphone", State::ok, "Desk, peak -20 dB"}));
}

TEST(DoctorTest, reportsWhetherAKeyIsStoredButNotTheKey) {
    MemorySecretItems secrets;
    EXPECT_EQ(troubles(checkKeyring(secrets)), "API key: fail; ");
    ASSERT_TRUE(secrets
                    .add(KeychainStore::query(SecretKey::deepgramAPIKey), "sesame",
                         SecretAccessibility::afterFirstUnlockThisDeviceOnly)
                    .isSuccess());
    const auto findings = checkKeyring(secrets);
    EXPECT_EQ(troubles(findings), "");
    EXPECT_EQ(reportText(findings).find("sesame"), std::string::npos);
}

TEST(DoctorTest, findsADamagedFileAndLeavesItWhereItIs) {
    const test::TemporaryFolder folder;
    EXPECT_EQ(troubles(checkConfiguration(folder.path(), {})), "");
    test::write(folder.path() / "defaults.json", "{\"activationMode\": ");
    PlatformConfiguration configuration;
    configuration.problems = {"platform.json: fnKey is not text; it is ignored"};
    const auto findings = checkConfiguration(folder.path(), configuration);
    EXPECT_EQ(troubles(findings), "configuration: warning; configuration: warning; ");
    EXPECT_THAT(findings.front().found, HasSubstr("defaults.json is damaged"));
    EXPECT_EQ(test::textOf(folder.path() / "defaults.json"), "{\"activationMode\": ");
}

} // namespace
} // namespace orlune
