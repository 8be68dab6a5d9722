// The page as its user sees it: choosing, switching, recording a shortcut, allowing, and moving
// through it with the keyboard.

#include "settings/SettingsView.h"
#include "tests/settings/SettingsPage.h"

#include <QAccessible>
#include <QApplication>
#include <QScrollArea>
#include <QScrollBar>

namespace orlune {
namespace {

using namespace std::chrono_literals;
using Flags = ModifierFlags;

class SettingsWindowTest : public SettingsPage {
  protected:
    auto stored(std::string_view key) { return dictation.platform.userDefaults.object(key); }
    QAbstractButton* recorder() { return button("Shortcut,"); }
    /// A key that the desktop takes for itself, or that the window receives later.
    void watch(KeyEvent::Type type, std::uint16_t keyCode, Flags flags) {
        dictation.platform.keyEventMonitors.sendToOwnWindow({.type = type,
                                                             .keyCode = keyCode,
                                                             .modifierFlags = flags,
                                                             .nativeKeyCode = nativeCode(keyCode)});
        settle();
    }
    void receive(QEvent::Type type, std::uint16_t keyCode, Qt::Key key) {
        QKeyEvent event(type, key, Qt::NoModifier, nativeCode(keyCode), 0, 0);
        QApplication::sendEvent(QApplication::focusWidget(), &event);
        settle();
    }
    void press(std::uint16_t keyCode, Flags flags, Qt::Key key) {
        watch(KeyEvent::Type::keyDown, keyCode, flags);
        receive(QEvent::KeyPress, keyCode, key);
        receive(QEvent::KeyRelease, keyCode, key);
    }
    static std::uint32_t nativeCode(std::uint16_t keyCode) { return 8U + keyCode; }
};

TEST_F(SettingsWindowTest, aCardChoosesTheMode) {
    EXPECT_EQ(window.size(), QSize(550, 640));
    EXPECT_TRUE(button("Tap to toggle")->isChecked());
    EXPECT_TRUE(shows("Press fn to speak"));
    click("Hold to speak");
    EXPECT_EQ(dictation.state().activationMode(), ActivationMode::holdToSpeak);
    EXPECT_EQ(stored("activationMode"), UserDefaults::Value("holdToSpeak"));
    EXPECT_TRUE(shows("Hold fn to speak"));
    QTest::keyClick(button("Hold to speak"), Qt::Key_Left);
    settle();
    EXPECT_EQ(dictation.state().activationMode(), ActivationMode::tapToToggle);

    auto* const card = QAccessible::queryAccessibleInterface(button("Tap to toggle"));
    EXPECT_EQ(card->role(), QAccessible::RadioButton);
    EXPECT_EQ(card->text(QAccessible::Name), "Tap to toggle. Press once to start, once to finish");
    EXPECT_TRUE(card->state().checked);

    EXPECT_EQ(button("Hold to speak")->toolTip(), "");
    dictation.platform.keyEventMonitors.hasReleases = false; // as for other shortcuts on GNOME
    dictation.state().setShortcut({49, {DictationShortcut::Modifiers::control}});
    settle();
    EXPECT_TRUE(button("Hold to speak")->toolTip().contains("press it again to finish"));
    EXPECT_EQ(button("Tap to toggle")->toolTip(), "");
}

TEST_F(SettingsWindowTest, switchesAreThoseOfTheState) {
    click("Enable Orlune");
    EXPECT_FALSE(dictation.state().isEnabled());
    click("Intent Check");
    EXPECT_EQ(stored("intentCheckEnabled"), UserDefaults::Value(false));
    dictation.state().setEnabled(true);
    settle();
    EXPECT_TRUE(button("Enable Orlune")->isChecked()) << "switched on in another place";
}

TEST_F(SettingsWindowTest, recordsAShortcut) {
    click("Shortcut,");
    EXPECT_EQ(recorder()->text(), "press shortcut");
    EXPECT_TRUE(dictation.state().isCapturingShortcut());
    watch(KeyEvent::Type::keyDown, /*keyCode=*/48, Flags::option);
    EXPECT_TRUE(dictation.state().isCapturingShortcut());
    press(/*keyCode=*/0, Flags::none, Qt::Key_A);
    EXPECT_EQ(dictation.platform.sound.beeps, 1);
    press(/*keyCode=*/0, Flags::shift | Flags::command, Qt::Key_A);
    EXPECT_EQ(dictation.state().shortcut().get().displayName(), "⇧⌘A");
    EXPECT_EQ(recorder()->text(), "⇧⌘a");
    EXPECT_FALSE(dictation.state().isCapturingShortcut());
    EXPECT_FALSE(recorder()->hasFocus());
    press(/*keyCode=*/1, Flags::command, Qt::Key_S);
    EXPECT_EQ(recorder()->text(), "⇧⌘a") << "no longer recording";
}

TEST_F(SettingsWindowTest, theRecorderShowsWhichKeyStandsInForFn) {
    EXPECT_EQ(recorder()->toolTip(), "Change dictation shortcut");
    dictation.platform.keyEventMonitors.standIn = "Right Control";
    dictation.state().setShortcut({.keyCode = 49});
    settle();
    EXPECT_EQ(recorder()->toolTip(),
              "Change dictation shortcut\nfn is Right Control on this keyboard");
    EXPECT_EQ(recorder()->accessibleDescription(),
              "Change dictation shortcut. fn is Right Control on this keyboard");
}

TEST_F(SettingsWindowTest, recordsWhatItReceivesAfterAllKeysAreUpAgain) {
    constexpr std::uint16_t fn = 63;
    constexpr std::uint16_t space = 49;
    recorder()->setFocus();
    QTest::keyClick(recorder(), Qt::Key_Space);
    watch(KeyEvent::Type::flagsChanged, fn, Flags::function);
    watch(KeyEvent::Type::keyDown, space, Flags::function);
    watch(KeyEvent::Type::keyUp, space, Flags::function);
    watch(KeyEvent::Type::flagsChanged, fn, Flags::none);
    receive(QEvent::KeyPress, fn, Qt::Key_Control);
    EXPECT_TRUE(dictation.state().isCapturingShortcut());
    receive(QEvent::KeyPress, space, Qt::Key_Space);
    receive(QEvent::KeyRelease, space, Qt::Key_Space);
    receive(QEvent::KeyRelease, fn, Qt::Key_Control);
    EXPECT_EQ(dictation.state().shortcut().get().displayName(), "fn Space");
    EXPECT_FALSE(dictation.state().isCapturingShortcut()) << "the space pressed the button too";
}

TEST_F(SettingsWindowTest, aRecordingEndsOnceHoweverItIsLeft) {
    std::vector<bool> told;
    const Subscription subscription = dictation.state().isCapturingShortcut().subscribe(
        [&](bool isCapturing) { told.push_back(isCapturing); });
    const auto expectEnd = [&] {
        settle();
        EXPECT_EQ(std::exchange(told, {}), (std::vector{true, false}));
        EXPECT_EQ(dictation.state().shortcut().get().displayName(), "fn");
    };
    click("Shortcut,");
    press(/*keyCode=*/53, Flags::none, Qt::Key_Escape);
    expectEnd();
    EXPECT_EQ(recorder()->text(), "fn");
    EXPECT_TRUE(window.isVisible()) << "Escape was meant for the recorder";

    click("Shortcut,");
    QTest::mouseClick(entry(), Qt::LeftButton);
    expectEnd();
    EXPECT_TRUE(entry()->hasFocus());

    click("Shortcut,");
    QTest::mouseClick(recorder(), Qt::RightButton);
    EXPECT_TRUE(dictation.state().isCapturingShortcut());
    QTest::mouseClick(&window, Qt::LeftButton, {}, QPoint(1, 1));
    expectEnd();

    click("Shortcut,");
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    expectEnd();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));

    click("Shortcut,");
    window.close();
    expectEnd();
}

TEST_F(SettingsWindowTest, closesByKeyboard) {
    QTest::keyClick(&window, Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(window.isVisible());
    open();
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
}

TEST_F(SettingsWindowTest, permissionsArePolledWhileTheyAreSeen) {
    auto& platform = dictation.platform;
    EXPECT_FALSE(button("Allow"));
    platform.captureAuthorization.status = CaptureAuthorization::Status::denied;
    platform.accessibility.reason = "no extension";
    platform.advance(1s);
    settle();
    EXPECT_TRUE(button("Allow Microphone"));
    platform.accessibility.reason.clear();
    platform.captureAuthorization.status = CaptureAuthorization::Status::authorized;
    platform.advance(1s);
    settle();
    EXPECT_FALSE(button("Allow"));

    window.hide();
    settle();
    EXPECT_EQ(platform.clock.nextWake(), std::nullopt);
    platform.accessibility.reason = "taken away";
    open();
    EXPECT_TRUE(button("Allow Accessibility")) << "read again at once";
}

TEST_F(SettingsWindowTest, asksForPermissions) {
    auto& platform = dictation.platform;
    platform.captureAuthorization.status = CaptureAuthorization::Status::notDetermined;
    platform.accessibility.reason = "no extension";
    platform.advance(1s);
    settle();
    click("Allow Microphone");
    ASSERT_EQ(platform.captureAuthorization.requests.size(), 1U);
    platform.captureAuthorization.requests[0](true);
    settle();
    EXPECT_FALSE(button("Allow Microphone"));
    auto* const scrolled = window.findChild<QScrollArea*>()->verticalScrollBar();
    scrolled->setValue(scrolled->maximum());
    click("Allow Accessibility");
    EXPECT_EQ(platform.accessibility.log()->back(), "prompt");
    platform.accessibility.reason.clear();
    platform.advance(500ms);
    settle();
    EXPECT_FALSE(button("Allow Accessibility"));
    EXPECT_EQ(scrolled->value(), scrolled->maximum()) << "the page stays where it is";
}

TEST_F(SettingsWindowTest, theKeyboardReachesEverythingInOrderAndInSight) {
    dictation.platform.accessibility.reason = "no extension";
    dictation.storeKey("secret");
    dictation.state().setHasDeepgramAPIKey(true);
    dictation.platform.advance(1s);
    settle();
    QTest::keyClicks(entry(), "new");
    window.setFocus();
    QStringList names;
    for (int count = 0; count < 8; ++count) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        auto* const focused = QApplication::focusWidget();
        names << QAccessible::queryAccessibleInterface(focused)->text(QAccessible::Name);
        EXPECT_FALSE(focused->visibleRegion().isEmpty()) << qPrintable(names.last());
    }
    EXPECT_EQ(names.join(" | "),
              "Tap to toggle. Press once to start, once to finish | Shortcut, fn | Enable Orlune | "
              "Intent Check | Deepgram API Key | Remove | Replace | Allow Accessibility");
}

} // namespace
} // namespace orlune
