// The icon and its menu as a panel sees them, and the effect of clicks there.

#include "tests/desktop/Desktop.h"
#include "tests/desktop/RunningOrlune.h"
#include "tests/desktop/TrayPanel.h"

#include <QClipboard>
#include <QGuiApplication>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <set>

namespace orlune {
namespace {

using desktop::activeWindowTitle;
using desktop::RunningOrlune;
using desktop::TrayPanel;
using desktop::waitUntil;
using testing::ElementsAre;

constexpr auto idleTip = "Press fn to speak (Right Control on this keyboard)";

/// The panel starts long after the program.
class Tray : public testing::Test {
  protected:
    Tray() {
        orlune.start();
        EXPECT_TRUE(iconComes());
    }

    bool iconComes() {
        return waitUntil([this] { return panel->hasIcon(); });
    }
    testing::AssertionResult tells(const std::string& tip) {
        if (waitUntil([&] { return panel->tells("Orlune: " + tip); })) {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure()
               << "it tells " << panel->shown().back().tip << " and is " << orlune.phase();
    }
    bool offers(const std::string& item) {
        return waitUntil([&] { return panel->offers(item); });
    }
    bool opens(const std::string& title) {
        return waitUntil([&] { return activeWindowTitle() == title; });
    }

    RunningOrlune orlune{/*pause=*/0.7};
    std::optional<TrayPanel> panel = std::make_optional<TrayPanel>();
};

TEST_F(Tray, ComesBackWhenThePanelHasCrashed) {
    for (const bool isBack : {false, true}) {
        if (isBack) {
            panel.reset();
            panel.emplace();
            ASSERT_TRUE(iconComes());
        }
        EXPECT_EQ(panel->identifier(), "app.orlune.Orlune");
        EXPECT_THAT(panel->menu(),
                    ElementsAre("Open Orlune  Control+O", "-", "Start Dictation  Alt+Space",
                                "Orlune Enabled [x]", "-", "(Press fn to speak)",
                                "Settings…  Control+,", "-", "Quit Orlune  Control+Q"));
        panel->choose("Settings…");
        EXPECT_TRUE(opens("Orlune Settings"));
        panel->activate();
        EXPECT_TRUE(opens("Orlune"));
    }
    panel->choose("Settings…");
    EXPECT_TRUE(opens("Orlune Settings"));
    panel->choose("Open Orlune");
    EXPECT_TRUE(opens("Orlune"));
    panel->choose("Quit Orlune");
    EXPECT_EQ(orlune.program().exitCode(), 0);
    EXPECT_EQ(orlune.program().standardError(), "");
}

TEST_F(Tray, ShowsEachPhaseOfADictationThatItStartsStopsAndConfirms) {
    QGuiApplication::clipboard()->setText(QStringLiteral("not dictated"));
    panel->choose("Start Dictation");
    ASSERT_TRUE(tells("Listening"));
    EXPECT_TRUE(offers("Stop Dictation  Alt+Space"));
    panel->choose("Stop Dictation");
    ASSERT_TRUE(tells("Finishing"));
    EXPECT_TRUE(offers("Start Dictation  Alt+Space"));
    panel->choose("Start Dictation");
    ASSERT_TRUE(tells("Check the intent")) << "nothing begins while one is being finished";
    panel->choose("Start Dictation");
    ASSERT_TRUE(tells(idleTip));
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), RunningOrlune::understoodWords);
    ASSERT_EQ(desktop::OwnProgram({ORLUNE_PROGRAM, "key", "remove"}).exitCode(), 0);
    panel->choose("Start Dictation");
    ASSERT_TRUE(tells("Add your Deepgram API key in Settings"));
    EXPECT_TRUE(tells(idleTip));

    std::vector<std::string> tips;
    std::map<std::string, std::set<QByteArray>> pictures;
    for (const auto& icon : panel->shown()) {
        if (icon.tip != "Orlune: Connecting securely") { // too short for every panel to read it
            tips.push_back(icon.tip.substr(std::string("Orlune: ").size()));
            pictures[tips.back()].insert(icon.picture);
        }
    }
    EXPECT_THAT(tips, ElementsAre(idleTip, "Listening", "Finishing", "Check the intent", "Inserted",
                                  idleTip, "Add your Deepgram API key in Settings", idleTip));
    std::set<QByteArray> all;
    for (const auto& [tip, ofPhase] : pictures) {
        EXPECT_EQ(ofPhase.size(), 1U) << tip;
        all.merge(std::set(ofPhase));
    }
    EXPECT_EQ(all.size(), 6U) << "each phase has a picture of its own";
}

TEST_F(Tray, SwitchesDictationOffExceptForTheOneThatRuns) {
    panel->choose("Start Dictation");
    ASSERT_TRUE(offers("Stop Dictation  Alt+Space"));
    panel->choose("Orlune Enabled");
    EXPECT_TRUE(offers("Orlune Enabled [ ]"));
    panel->choose("Stop Dictation");
    ASSERT_TRUE(tells("Check the intent"));
    ASSERT_TRUE(orlune.does("cancel"));
    ASSERT_TRUE(tells(idleTip));

    panel->choose("Start Dictation");
    EXPECT_EQ(orlune.phase(), "idle");
    panel->choose("Orlune Enabled");
    EXPECT_TRUE(offers("Orlune Enabled [x]"));
    panel->choose("Start Dictation");
    EXPECT_TRUE(tells("Listening"));
}

} // namespace
} // namespace orlune
