// The home page during a simulated dictation, and its window.

#include "mainwindow/DictationSurface.h"
#include "mainwindow/HomeView.h"
#include "mainwindow/KeyCap.h"
#include "mainwindow/MainGlassCard.h"
#include "tests/mainwindow/WindowUser.h"
#include "visuals/ProcessingGlow.h"
#include "visuals/VoiceWaveform.h"

#include <QScrollBar>

#include <algorithm>

namespace orlune {
namespace {

struct HomeTest : WindowUser, testing::Test {
    HomeTest() : WindowUser("secret") {
        dictation.platform.userDefaults.set("hasCompletedOnboarding", true);
    }

    template <typename Kind>
    bool shows() const {
        return std::ranges::any_of(window->findChildren<QWidget*>(), [](const QWidget* part) {
            return part->isVisible() && dynamic_cast<const Kind*>(part);
        });
    }

    /// Checks the texts of the functions, and that the page shows them.
    void expectTexts(const std::string& title, const std::string& subtitle) {
        settle();
        EXPECT_EQ(phaseTitle(dictation.state()), title);
        EXPECT_EQ(phaseSubtitle(dictation.state()), subtitle);
        EXPECT_TRUE(tells(QString::fromStdString(title + ". " + subtitle)));
    }
};

TEST_F(HomeTest, saysWhatTheEngineDoes) {
    open();
    auto& state = dictation.state();
    expectTexts("Press fn to speak", "Your prompt will appear at the active cursor");
    dictation.begin();
    expectTexts("Listening", "Press again when you're finished");
    state.setActivationMode(ActivationMode::holdToSpeak);
    expectTexts("Listening", "Release when you're finished");
    dictation.end();
    expectTexts("Structuring your prompt", "Finishing the transcript");
    dictation.cancel();
    expectTexts("Needs attention", "Cancelled");
    dictation.dictate("Rename the button");
    expectTexts("Check the intent", "Press Fn to insert or Escape to cancel");
    dictation.confirm();
    expectTexts("Prompt inserted", "Ready for the next one");
    dictation.platform.advance(std::chrono::seconds(1));
    expectTexts("Hold fn to speak", "Your prompt will appear at the active cursor");
}

TEST_F(HomeTest, showsTheVoiceInTheTestArea) {
    open();
    const auto placeholder = [this] { return editor()->placeholderText(); };
    const auto lineWidth = [this] {
        return DictationSurface::style(dictation.state().phase()).lineWidth;
    };
    EXPECT_EQ(placeholder(), "Click here, activate Orlune, and describe what you want to build…");
    EXPECT_EQ(lineWidth(), 0.5);
    dictation.begin();
    settle();
    EXPECT_EQ(placeholder(), "");
    EXPECT_EQ(lineWidth(), 1);
    EXPECT_TRUE(shows<VoiceWaveform>());
    dictation.end();
    settle();
    EXPECT_FALSE(shows<VoiceWaveform>());
    EXPECT_TRUE(shows<ProcessingGlow>());
    EXPECT_EQ(lineWidth(), 0.5);
    dictation.cancel();
    dictation.platform.advance(std::chrono::seconds(1));
    settle();
    EXPECT_NE(placeholder(), "");
    EXPECT_FALSE(shows<ProcessingGlow>());
}

TEST_F(HomeTest, clearEmptiesTheTestAreaAndGivesItTheKeyboard) {
    open();
    EXPECT_FALSE(button("Clear")->isEnabled());
    EXPECT_FALSE(editor()->document()->isUndoAvailable());
    QTest::mouseClick(editor()->viewport(), Qt::LeftButton);
    type("hello");
    click("Clear");
    EXPECT_EQ(editor()->toPlainText(), "");
    EXPECT_TRUE(editor()->hasFocus());
    EXPECT_FALSE(button("Clear")->isEnabled());
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor()->toPlainText(), "hello") << "a slip can be undone";
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), button("Clear"));
    QTest::mouseClick(editor()->parentWidget()->parentWidget(), Qt::LeftButton, {}, {3, 3});
    EXPECT_TRUE(editor()->hasFocus()) << "a click beside the text counts too";
}

TEST_F(HomeTest, fitsItsWindowWithEqualMarginsWhileItScrolls) {
    open();
    const auto place = [this](QWidget* part) {
        return QRect(part->mapTo(&*window, QPoint()), part->size());
    };
    const QRect card = place(seen<MainGlassCard>());
    EXPECT_EQ(card.left(), 32);
    EXPECT_EQ(window->width() - 1 - card.right(), 32);
    ASSERT_TRUE(seen<QScrollBar>()) << "it scrolls";
    EXPECT_EQ(place(button("Settings")).right(), card.right());
    EXPECT_EQ(place(button("Clear")).right(), place(seen<DictationSurface>()).right());
    const QRect engine =
        place(named("Orlune Engine, Deepgram streaming with your securely stored API key, Ready"));
    EXPECT_EQ(engine.height(), 54);
    EXPECT_LE(engine.bottom(), window->height() - 1) << "the last row is whole";
}

TEST_F(HomeTest, showsWhichKeyStandsInForFn) {
    dictation.platform.keyEventMonitors.standIn = "Right Control";
    open();
    auto* const cap = seen<KeyCap>();
    EXPECT_EQ(cap->toolTip(), "Right Control on this keyboard");
    EXPECT_EQ(cap->accessibleName(), "fn, Right Control on this keyboard");
    dictation.state().setShortcut(
        {.keyCode = 40, .modifiers = DictationShortcut::Modifiers::command});
    settle();
    EXPECT_EQ(cap->toolTip(), "");
    EXPECT_EQ(cap->accessibleName(), "⌘K");
}

TEST_F(HomeTest, showsWhatIsReady) {
    auto& platform = dictation.platform;
    platform.captureAuthorization.status = CaptureAuthorization::Status::denied;
    open();
    EXPECT_TRUE(tells("Microphone, Setup"));
    EXPECT_TRUE(tells("Accessibility, Ready"));
    EXPECT_TRUE(reads("Active"));
    platform.captureAuthorization.status = CaptureAuthorization::Status::authorized;
    dictation.state().setEnabled(false);
    dictation.state().setHasDeepgramAPIKey(false);
    settle();
    EXPECT_TRUE(tells("Microphone, Setup")) << "nobody looks";
    Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
    settle();
    EXPECT_TRUE(tells("Microphone, Ready"));
    EXPECT_TRUE(reads("Paused"));
    EXPECT_TRUE(reads("Setup")) << "the engine has no key";
    click("Settings");
    EXPECT_EQ(settingsOpened, 1);
}

TEST_F(HomeTest, closingTheWindowHidesIt) {
    open();
    type("kept");
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(window->isVisible());
    window->present();
    EXPECT_EQ(editor()->toPlainText(), "kept");
    EXPECT_EQ(window->size(), QSize(700, 540));
    EXPECT_EQ(window->minimumSizeHint(), QSize(640, 480));
}

} // namespace
} // namespace orlune
