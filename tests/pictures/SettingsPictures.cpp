#include "settings/SettingsWindow.h"
#include "tests/pictures/Pictures.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QEnterEvent>
#include <QEventLoop>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>

namespace orlune::pictures {

namespace {

using Play = std::function<void(SettingsWindow&)>;
using SetUp = std::function<void(DictationHarness&)>;

/// The window after it was shown and these steps.
auto settings(Play play = {}, SetUp setUp = {}) {
    return [play = std::move(play), setUp = std::move(setUp)](Stage& stage) {
        if (setUp) {
            setUp(stage.dictation);
        }
        auto* window = new SettingsWindow(stage.dictation.state().shared_from_this(),
                                          stage.dictation.platform.bundle());
        QMetaObject::invokeMethod(
            window,
            [window, play] {
                window->setFocus(); // as when it is opened by a user
                if (play) {
                    play(*window);
                }
            },
            Qt::QueuedConnection);
        return window;
    };
}

QAbstractButton* button(SettingsWindow& window, const QString& name) {
    for (auto* candidate : window.findChildren<QAbstractButton*>()) {
        if (candidate->text() == name || candidate->accessibleName().startsWith(name)) {
            return candidate;
        }
    }
    return nullptr;
}

void wait(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

void scrollToEnd(SettingsWindow& window) {
    auto* bar = window.findChild<QScrollArea*>()->verticalScrollBar();
    bar->setValue(bar->maximum());
}

auto clicking(const QString& name) {
    return [name](SettingsWindow& window) {
        window.window()->activateWindow();
        wait(50);
        button(window, name)->click();
    };
}

void enterKey(SettingsWindow& window) {
    scrollToEnd(window);
    window.findChild<QLineEdit*>()->insert(QStringLiteral("0123456789abcdef0123456789abcdef"));
}

void hover(SettingsWindow& window) {
    const QPointF place(50, 50);
    QEnterEvent event(place, place, place);
    QCoreApplication::sendEvent(button(window, QStringLiteral("Hold to speak")), &event);
    constexpr int settled = 500;
    wait(settled);
}

void withoutKey(DictationHarness& dictation) {
    dictation.platform.secretItems.items.clear();
}

void withoutPermissions(DictationHarness& dictation) {
    dictation.platform.captureAuthorization.status = CaptureAuthorization::Status::denied;
    dictation.platform.accessibility.reason = "no extension";
}

auto refusing(const std::string& reason) {
    return [reason](DictationHarness& dictation) {
        withoutKey(dictation);
        dictation.platform.secretItems.addStatus = {SecretStatus::Code::refused, reason};
    };
}

void saveKey(SettingsWindow& window) {
    enterKey(window);
    button(window, QStringLiteral("Save"))->click();
    wait(100);
    scrollToEnd(window);
}

auto withShortcut(const DictationShortcut& shortcut) {
    return [shortcut](DictationHarness& dictation) { dictation.state().setShortcut(shortcut); };
}

} // namespace

std::vector<Picture> settingsPictures() {
    using Modifiers = DictationShortcut::Modifiers;
    const auto everyModifier = Modifiers{Modifiers::control, Modifiers::option, Modifiers::shift,
                                         Modifiers::command, Modifiers::function};
    std::vector<Picture> pictures{
        {"tap", settings()},
        {"hold", settings({},
                          [](auto& dictation) {
                              dictation.state().setActivationMode(ActivationMode::holdToSpeak);
                              dictation.state().setEnabled(false);
                          })},
        {"hover", settings(hover)},
        {"recording", settings(clicking(QStringLiteral("Shortcut,")))},
        {"shortcut",
         settings({}, withShortcut(
                          {.keyCode = 49, .modifiers = {Modifiers::control, Modifiers::option}}))},
        {"longest-shortcut",
         settings({}, withShortcut({.keyCode = 122, .modifiers = everyModifier}))},
        {"end", settings(scrollToEnd)},
        {"end-without-key", settings(scrollToEnd, withoutKey)},
        {"end-without-permissions", settings(scrollToEnd, withoutPermissions)},
        {"key-entered", settings(enterKey)},
        {"key-refused", settings(saveKey, refusing("The keyring is locked"))},
        {"key-refused-at-length",
         settings(saveKey, refusing("The keyring did not answer within 1.5 seconds. It may be "
                                    "waiting for its password in a window behind this one."))},
    };
    for (auto& picture : pictures) {
        picture.name.prepend(QStringLiteral("settings-"));
        picture.margin = 0;
    }
    return pictures;
}

} // namespace orlune::pictures
