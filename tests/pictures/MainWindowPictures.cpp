#include "mainwindow/MainWindowView.h"
#include "tests/pictures/Pictures.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

namespace orlune::pictures {

namespace {

using Play = std::function<void(DictationHarness&)>;
using Modifiers = DictationShortcut::Modifiers;

constexpr QSize usualSize(700, 540);
constexpr QSize smallestSize(640, 480);

void press(const QWidget& view, const QString& title) {
    for (auto* button : view.findChildren<QPushButton*>()) {
        if (button->text() == title) {
            button->click();
        }
    }
}

void type(const QWidget& view, const QString& text) {
    for (auto* editor : view.findChildren<QPlainTextEdit*>()) {
        editor->setPlainText(text);
    }
}

QWidget* window(Stage& stage, const Play& play, QSize size) {
    play(stage.dictation);
    auto* view = new MainWindowView(stage.dictation.state().shared_from_this(),
                                    stage.dictation.platform.bundle(), /*openSettings=*/[] {});
    view->setFixedSize(size);
    return view;
}

auto step(int step, Play play, QSize size = usualSize, QString text = {}) {
    return [step, play = std::move(play), size, text = std::move(text)](Stage& stage) {
        auto* view = window(stage, play, size);
        for (int count = 0; count < step; ++count) {
            press(*view, "Continue");
        }
        type(*view, text);
        return view;
    };
}

auto home(Play play, QSize size = usualSize, QString text = {}) {
    return [play = std::move(play), size, text = std::move(text)](Stage& stage) {
        stage.dictation.platform.userDefaults.set("hasCompletedOnboarding", true);
        auto* view = window(stage, play, size);
        type(*view, text);
        return view;
    };
}

void nothing(DictationHarness& /*dictation*/) {}

void forgetKey(DictationHarness& dictation) {
    dictation.platform.secretItems.items.clear();
}

void denyAll(DictationHarness& dictation) {
    dictation.platform.captureAuthorization.status = CaptureAuthorization::Status::denied;
    dictation.platform.accessibility.reason = "no display";
}

void hold(DictationHarness& dictation) {
    dictation.state().setActivationMode(ActivationMode::holdToSpeak);
}

void listen(DictationHarness& dictation) {
    dictation.begin();
    for (const float amplitude : {0.1F, 0.6F, 0.8F, 0.5F, 0.7F, 0.3F, 0.6F}) {
        dictation.hear(amplitude);
    }
}

void process(DictationHarness& dictation) {
    listen(dictation);
    dictation.end();
}

void failAtLength(DictationHarness& dictation) {
    dictation.platform.audioEngine.startError =
        "The sound server ended the connection while the microphone was being opened: the device "
        "\"Built-in Audio Analog Stereo\" is used by another program, and this one is not allowed "
        "to share it. Close the other program, or choose another microphone.";
    dictation.begin();
}

/// The set-up's second step after the keyring has refused an entered key.
QWidget* refusedKey(Stage& stage) {
    auto* view = step(1, forgetKey)(stage);
    stage.dictation.platform.secretItems.addStatus = {
        SecretStatus::Code::timedOut,
        "The keyring did not answer in time. It may be waiting for its password: answer the prompt "
        "and try again."};
    view->findChild<QLineEdit*>()->setText("0123456789012345678901234567890123456789");
    press(*view, "Save Key");
    return view;
}

void useLongShortcut(DictationHarness& dictation) {
    dictation.state().setShortcut(
        {.keyCode = 122,
         .modifiers = {Modifiers::control, Modifiers::option, Modifiers::shift, Modifiers::command,
                       Modifiers::function}});
}

const QString written =
    "Build a command that reads the log file. Newest entries first. No more than ten lines.\n\n"
    "Requirements\n- Errors are values\n- Tests for the empty file\n- One comment on top\n"
    "- Standard library alone\n- Short and simple";

} // namespace

std::vector<Picture> mainWindowPictures() {
    std::vector<Picture> pictures = {
        {"onboarding-0-welcome", step(0, nothing)},
        {"onboarding-0-welcome-smallest", step(0, nothing, smallestSize)},
        {"onboarding-1-key-missing", step(1, forgetKey)},
        {"onboarding-1-key-stored", step(1, nothing)},
        {"onboarding-1-key-refused", refusedKey},
        {"onboarding-1-key-smallest", step(1, forgetKey, smallestSize)},
        {"onboarding-2-permissions-missing", step(2, denyAll)},
        {"onboarding-2-permissions-granted", step(2, nothing)},
        {"onboarding-2-permissions-smallest", step(2, denyAll, smallestSize)},
        {"onboarding-3-test-tap", step(3, nothing)},
        {"onboarding-3-test-hold-smallest", step(3, hold, smallestSize)},
        {"onboarding-3-test-listening", step(3, listen)},
        {"onboarding-3-test-ready", step(3, nothing, smallestSize, written)},
        {"home-idle", home(nothing)},
        {"home-large", home(nothing, QSize(1000, 760))},
        {"home-smallest", home(nothing, smallestSize)},
        {"home-nothing-ready", home([](auto& dictation) {
             forgetKey(dictation);
             denyAll(dictation);
             dictation.state().setEnabled(false);
         })},
        {"home-listening", home(listen)},
        {"home-processing", home(process)},
        {"home-reviewing", home([](auto& dictation) { dictation.dictate("Rename the button"); })},
        {"home-success", home(
                             [](auto& dictation) {
                                 dictation.state().setIntentCheckEnabled(false);
                                 dictation.dictate("Rename the button");
                             },
                             usualSize, "Rename the button")},
        {"home-long-failure", home(failAtLength, smallestSize)},
        {"home-long-shortcut", home(useLongShortcut, smallestSize)},
        {"home-much-text", home(nothing, usualSize, written)},
    };
    for (auto& picture : pictures) {
        picture.margin = 0;
    }
    return pictures;
}

} // namespace orlune::pictures
