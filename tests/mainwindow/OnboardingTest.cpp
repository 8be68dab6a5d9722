// The initial set-up, from the welcome to the home page.

#include "tests/mainwindow/WindowUser.h"

namespace orlune {
namespace {

using namespace std::chrono_literals;

const QString readyText = QStringLiteral("Orlune is ready");

struct OnboardingTest : WindowUser, testing::Test {
    OnboardingTest() : WindowUser("") {}

    MemoryPlatform& platform = dictation.platform;

    void expectFinished() {
        EXPECT_EQ(platform.userDefaults.boolean("hasCompletedOnboarding"), true);
        EXPECT_TRUE(reads("Ready wherever you type"));
        open();
        EXPECT_TRUE(reads("Ready wherever you type")) << "the set-up is over for good";
    }
};

TEST_F(OnboardingTest, comesUpAsOneWindow) {
    struct Appearances final : QObject {
        bool eventFilter(QObject* receiver, QEvent* event) override {
            count += event->type() == QEvent::Show && receiver->isWindowType();
            return false;
        }
        int count = 0;
    } appearances;
    qApp->installEventFilter(&appearances);
    open();
    EXPECT_EQ(appearances.count, 1) << "no part of it is shown before it lies in the window";
}

TEST_F(OnboardingTest, runsToItsEndByKeyboardOnly) {
    open();
    EXPECT_TRUE(tells("Step 1 of 4"));
    press(Qt::Key_Return);
    EXPECT_TRUE(reads("Connect Deepgram."));
    type("a key");
    press(Qt::Key_Return);
    EXPECT_TRUE(dictation.state().hasDeepgramAPIKey().get());
    EXPECT_TRUE(reads("Connect Deepgram.")) << "the same Return does not go on";
    press(Qt::Key_Return);
    EXPECT_TRUE(reads("Two permissions. Nothing more."));
    press(Qt::Key_Return);
    EXPECT_TRUE(tells("Step 4 of 4"));
    wait(349ms);
    EXPECT_FALSE(editor()->hasFocus());
    wait(1ms);
    ASSERT_TRUE(editor()->hasFocus());
    EXPECT_TRUE(reads("Press to start"));
    type("hello");
    EXPECT_TRUE(tells(readyText));
    for (int count = 0; count < 5; ++count) {
        press(Qt::Key_Backspace);
    }
    EXPECT_FALSE(tells(readyText));
    EXPECT_TRUE(reads("Press to start"));
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), button("Back"));
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), button("Start Using Orlune"));
    press(Qt::Key_Return);
    expectFinished();
}

TEST_F(OnboardingTest, runsToItsEndByClicksOnly) {
    dictation.storeKey("from an earlier run");
    open();
    EXPECT_FALSE(button("Back"));
    click("Continue");
    EXPECT_TRUE(reads("Deepgram key saved securely"));
    EXPECT_FALSE(button("Replace Key")->isEnabled());
    click("Open Deepgram Console");
    EXPECT_EQ(platform.urlOpener.opened, std::vector<std::string>{"https://console.deepgram.com/"});
    click("Continue");
    click("Back");
    EXPECT_TRUE(reads("Connect Deepgram."));
    click("Continue");
    click("Continue");
    click("Back");
    wait(1s);
    EXPECT_EQ(QApplication::focusWidget(), button("Back")) << "no editor takes it afterwards";
    click("Continue");
    click("Start Using Orlune");
    expectFinished();
}

TEST_F(OnboardingTest, doesNotGoOnWithoutAKey) {
    open();
    click("Continue");
    EXPECT_FALSE(button("Continue")->isEnabled());
    const auto asked = platform.secretItems.log;
    type("  ");
    press(Qt::Key_Return);
    EXPECT_EQ(platform.secretItems.log, asked);
    EXPECT_TRUE(reads("A Deepgram key is required to transcribe"));

    platform.secretItems.addStatus = {SecretStatus::Code::refused, "The keyring said no"};
    type("a key");
    click("Save Key");
    EXPECT_TRUE(reads("The keyring said no"));
    EXPECT_FALSE(button("Continue")->isEnabled());

    platform.secretItems.addStatus = {};
    click("Save Key");
    EXPECT_EQ(platform.secretItems.items.at(0).data, "a key") << "the entry was kept";
    EXPECT_TRUE(reads("Deepgram key saved securely"));
    EXPECT_FALSE(button("Replace Key")->isEnabled()) << "the entry is empty again";
    EXPECT_TRUE(button("Continue")->isEnabled());
}

TEST_F(OnboardingTest, forgetsAnUnsavedKeyWhenItsWindowIsClosed) {
    open();
    click("Continue");
    type("a key");
    EXPECT_TRUE(button("Save Key")->isEnabled());
    window->close();
    settle();
    window->present();
    settle();
    EXPECT_FALSE(button("Save Key")->isEnabled());
    type("another");
    click("Save Key");
    EXPECT_EQ(platform.secretItems.items.at(0).data, "another");
}

TEST_F(OnboardingTest, aHeldReturnContinuesOnce) {
    dictation.storeKey("secret");
    open();
    press(Qt::Key_Return);
    EXPECT_TRUE(tells("Step 2 of 4"));
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Return, {}, "\r", /*autorep=*/true);
    QApplication::sendEvent(QApplication::focusWidget(), &repeated);
    settle();
    EXPECT_TRUE(tells("Step 2 of 4"));
}

TEST_F(OnboardingTest, checksPermissionsOnlyOnTheirPage) {
    dictation.storeKey("secret");
    platform.captureAuthorization.status = CaptureAuthorization::Status::denied;
    platform.accessibility.reason = "no display";
    open();
    const auto isPolling = [this] { return platform.clock.nextWake().has_value(); };
    click("Continue");
    EXPECT_FALSE(isPolling());
    click("Continue");
    EXPECT_TRUE(isPolling());
    EXPECT_FALSE(tells("Allowed"));
    click("Allow");
    ASSERT_EQ(platform.captureAuthorization.requests.size(), 1U);
    platform.captureAuthorization.status = CaptureAuthorization::Status::authorized;
    platform.captureAuthorization.requests[0](true);
    settle();
    EXPECT_TRUE(tells("Allowed"));
    platform.accessibility.reason = {};
    wait(1s);
    EXPECT_FALSE(button("Allow")) << "both are granted";
    window->close();
    settle();
    wait(1s);
    EXPECT_FALSE(isPolling());
    window->present();
    EXPECT_TRUE(QTest::qWaitFor([&] {
        settle();
        return isPolling();
    }));
    click("Continue");
    wait(1s);
    EXPECT_FALSE(isPolling());
}

TEST_F(OnboardingTest, theFocusMovesOnFromAGrantedPermission) {
    dictation.storeKey("secret");
    platform.captureAuthorization.status = CaptureAuthorization::Status::denied;
    platform.accessibility.reason = "no display";
    open();
    click("Continue");
    click("Continue");
    named("Allow Microphone")->setFocus(Qt::TabFocusReason);
    QWidget elsewhere; // where permissions are granted
    elsewhere.show();
    elsewhere.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&elsewhere));
    platform.captureAuthorization.status = CaptureAuthorization::Status::authorized;
    wait(1s);
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&*window));
    EXPECT_EQ(QApplication::focusWidget(), named("Allow Accessibility"));
    platform.accessibility.reason = {};
    wait(1s);
    EXPECT_EQ(QApplication::focusWidget(), button("Continue"));
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), button("Back")) << "what is hidden is passed over";
}

TEST_F(OnboardingTest, explainsTheModeThatIsChosen) {
    dictation.storeKey("secret");
    dictation.state().setActivationMode(ActivationMode::holdToSpeak);
    open();
    for (int count = 0; count < 3; ++count) {
        click("Continue");
    }
    EXPECT_TRUE(reads("Click below, hold Fn, and speak. Release Fn when you're done."));
    EXPECT_TRUE(reads("Hold to speak"));
    dictation.state().setActivationMode(ActivationMode::tapToToggle);
    settle();
    EXPECT_TRUE(reads("Click below, press Fn, and speak. Press Fn again when you're done."));
}

} // namespace
} // namespace orlune
