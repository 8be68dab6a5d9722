#include "settings/ShortcutRecorderButton.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>

namespace orlune {

namespace {

constexpr ui::Font titleFont{
    .size = 12, .weight = ui::Weight::semibold, .design = ui::Design::monospaced};

} // namespace

ShortcutRecorderButton::ShortcutRecorderButton(KeyEvents& keyEvents, Sound& sound)
    : ui::Button(
          {},
          {.style = ui::ButtonStyle::bordered, .size = ui::ControlSize::large, .font = titleFont}),
      keyEvents_(keyEvents), sound_(sound) {
    // A click does not move the focus, unless the button needs it to receive keys.
    setFocusPolicy(Qt::TabFocus);
    connect(this, &QPushButton::clicked, this, &ShortcutRecorderButton::beginRecording);
    updateTitle();
}

ShortcutRecorderButton::~ShortcutRecorderButton() {
    if (recorder_.cancel() && onCaptureStateChange) {
        onCaptureStateChange(false);
    }
}

void ShortcutRecorderButton::setShortcut(const DictationShortcut& shortcut) {
    shortcut_ = shortcut;
    updateTitle();
}

void ShortcutRecorderButton::beginRecording() {
    if (!isRecording()) {
        hadFocus_ = hasFocus();
    }
    watched_.clear();
    recorder_.begin();
    updateTitle();
    if (onCaptureStateChange) {
        onCaptureStateChange(true);
    }
    activateWindow();
    setFocus();
    qApp->installEventFilter(this);
    if (!monitor_) {
        monitor_ = keyEvents_.addLocalMonitor(KeyEventMask::keyDown | KeyEventMask::flagsChanged,
                                              [this](const auto& event) {
                                                  watched_.push_back(event);
                                                  return KeyEventAnswer::passOn;
                                              });
    }
}

/// Several keys may have been watched before the first of them is received, and some are never
/// received.
void ShortcutRecorderButton::receiveWatched(const QKeyEvent& received) {
    const bool isPress = received.type() == QEvent::KeyPress;
    const auto found = std::ranges::find_if(watched_, [&](const KeyEvent& event) {
        return event.nativeKeyCode == received.nativeScanCode()
               && (isPress || event.type == KeyEvent::Type::flagsChanged);
    });
    if (found != watched_.end()) {
        const auto event = *found;
        watched_.erase(watched_.begin(), found + 1);
        receive(event);
    }
}

bool ShortcutRecorderButton::event(QEvent* event) {
    if (isRecording()) {
        switch (event->type()) {
        case QEvent::ShortcutOverride:
            event->accept(); // keeps the window's shortcuts from taking it
            return true;
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
            receiveWatched(*static_cast<QKeyEvent*>(event));
            return true;
        default:
            break;
        }
    }
    return ui::Button::event(event);
}

/// Most of the page takes no focus when it is clicked. The position decides, because an unhandled
/// click is passed on to the parents.
bool ShortcutRecorderButton::eventFilter(QObject* receiver, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress && receiver->isWidgetType()) {
        const auto place = static_cast<QMouseEvent*>(event)->globalPosition();
        if (!QRectF(rect()).contains(mapFromGlobal(place))) {
            cancel();
        }
    }
    return ui::Button::eventFilter(receiver, event);
}

void ShortcutRecorderButton::receive(const KeyEvent& event) {
    using Answer = ShortcutRecorder::Answer;
    switch (recorder_.receive(event)) {
    case Answer::ignored:
    case Answer::waiting:
        break;
    case Answer::refused:
        sound_.beep();
        break;
    case Answer::cancelled:
        finish(std::nullopt);
        break;
    case Answer::captured:
        finish(recorder_.shortcut());
        break;
    }
}

void ShortcutRecorderButton::cancel() {
    if (recorder_.cancel()) {
        finish(std::nullopt);
    }
}

/// Called when the recorder has ended.
void ShortcutRecorderButton::finish(const std::optional<DictationShortcut>& shortcut) {
    monitor_.remove();
    qApp->removeEventFilter(this);
    if (onCaptureStateChange) {
        onCaptureStateChange(false);
    }
    if (shortcut) {
        shortcut_ = *shortcut;
        if (onCapture) {
            onCapture(*shortcut);
        }
    }
    updateTitle();
    // A user who came here with the keyboard continues from here.
    if (hasFocus() && !hadFocus_) {
        window()->setFocus();
    }
}

void ShortcutRecorderButton::updateTitle() {
    const QString title = isRecording() ? QStringLiteral("press shortcut")
                                        : QString::fromStdString(shortcut_.displayName()).toLower();
    setText(title);
    setAccessibleName(QStringLiteral("Shortcut, %1").arg(title));
    QStringList tips{QStringLiteral("Change dictation shortcut")};
    if (const auto hint = shortcut_.functionKeyHint(keyEvents_.functionKeyStandIn());
        !hint.empty()) {
        tips << QString::fromStdString(hint);
    }
    setToolTip(tips.join(u'\n'));
    setAccessibleDescription(tips.join(QStringLiteral(". ")));
    // The text is made smaller for many modifiers and a long key, so that all of it stays readable.
    constexpr double padding = 8;
    constexpr double smallest = 0.7;
    QFont font = titleFont.resolved();
    const double scale =
        (width() - 2 * padding) / std::max(1.0, QFontMetricsF(font).horizontalAdvance(title));
    font.setPointSizeF(font.pointSizeF() * std::clamp(scale, smallest, 1.0));
    setFont(font);
}

void ShortcutRecorderButton::focusOutEvent(QFocusEvent* event) {
    ui::Button::focusOutEvent(event);
    cancel();
}

void ShortcutRecorderButton::hideEvent(QHideEvent* event) {
    ui::Button::hideEvent(event);
    cancel();
}

void ShortcutRecorderButton::resizeEvent(QResizeEvent* event) {
    ui::Button::resizeEvent(event);
    updateTitle();
}

} // namespace orlune
