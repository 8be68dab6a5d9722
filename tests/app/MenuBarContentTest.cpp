// The tray's menu and icon, with a simulated dictation.

#include "app/tray/MenuBarContent.h"

#include "app/tray/StatusItem.h"
#include "tests/support/DictationHarness.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace orlune {
namespace {

class MenuBarContentTest : public testing::Test {
  protected:
    QAction* item(int index) const {
        QCoreApplication::sendPostedEvents(); // the menu is updated in the next turn
        return content->menu().actions().at(index);
    }
    std::string title(int index) const { return item(index)->text().toStdString(); }

    DictationHarness dictation;
    std::unique_ptr<MenuBarContent> content = std::make_unique<MenuBarContent>(
        dictation.state().shared_from_this(), MenuBarContent::Actions{});

    static constexpr int dictationItem = 2;
    static constexpr int enabledItem = 3;
    static constexpr int instructionItem = 5;
};

TEST_F(MenuBarContentTest, startsStopsAndConfirms) {
    item(dictationItem)->trigger();
    dictation.platform.runUntilIdle();
    ASSERT_EQ(dictation.phase(), "listening");
    EXPECT_EQ(title(dictationItem), "Stop Dictation");
    item(dictationItem)->trigger();
    EXPECT_EQ(title(dictationItem), "Start Dictation") << "while it finishes";
    dictation.platform.runUntilIdle();
    dictation.result("Rename the button", /*isFinal=*/true);
    dictation.metadata();
    dictation.platform.advance(std::chrono::milliseconds(20));
    ASSERT_EQ(dictation.phase(), "reviewing Rename the button.");
    item(dictationItem)->trigger();
    EXPECT_EQ(dictation.phase(), "success");
}

TEST_F(MenuBarContentTest, disablingKeepsADictationFromStarting) {
    EXPECT_TRUE(item(enabledItem)->isChecked());
    item(enabledItem)->trigger();
    item(dictationItem)->trigger();
    dictation.platform.runUntilIdle();
    EXPECT_EQ(dictation.phase(), "idle");
    dictation.state().setEnabled(true);
    EXPECT_TRUE(item(enabledItem)->isChecked());
}

TEST_F(MenuBarContentTest, saysHowToDictate) {
    using Modifiers = DictationShortcut::Modifiers;
    dictation.state().setActivationMode(ActivationMode::holdToSpeak);
    dictation.state().setShortcut(
        {.keyCode = 40, .modifiers = {Modifiers::shift, Modifiers::command}});
    EXPECT_EQ(title(instructionItem), "Hold ⇧⌘K to speak");
    EXPECT_FALSE(item(instructionItem)->isEnabled());
}

TEST(MenuBarSymbolTest, followsThePhaseAndIsSeenOnEveryPanel) {
    using Phase = AppState::Phase;
    EXPECT_EQ(menuBarSymbol(Phase::idle()), "waveform.circle");
    EXPECT_EQ(menuBarSymbol(Phase::listening()), "waveform.circle.fill");
    EXPECT_EQ(menuBarSymbol(Phase::failure("Cancelled")), "exclamationmark.circle.fill");
    for (const auto& phase : {Phase::idle(), Phase::processing(), Phase::reviewing({})}) {
        const auto picture = menuBarIcon(menuBarSymbol(phase)).pixmap(22).toImage();
        bool hasLight = false;
        bool hasDark = false;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const QColor color = picture.pixelColor(x, y);
                hasLight = hasLight || (color.alpha() > 200 && color.lightness() > 200);
                hasDark = hasDark || (color.alpha() > 60 && color.lightness() < 60);
            }
        }
        EXPECT_TRUE(hasLight && hasDark) << menuBarSymbol(phase).toStdString();
    }
}

} // namespace
} // namespace orlune
