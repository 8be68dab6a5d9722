#include "platform/linux/keys/LocalKeyFilter.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QWindow>

#include <algorithm>
#include <limits>

namespace orlune {

namespace {

/// Nothing else on the keyboard closes a menu.
bool closesMenu(const QKeyEvent& key) {
    const auto windows = QGuiApplication::allWindows();
    return key.key() == Qt::Key_Escape && std::ranges::any_of(windows, [](const QWindow* window) {
               return window->type() == Qt::Popup && window->isVisible();
           });
}

} // namespace

LocalKeyFilter::LocalKeyFilter(Ask ask) : ask_(std::move(ask)) {
    QCoreApplication::instance()->installEventFilter(this);
}

LocalKeyFilter::~LocalKeyFilter() = default;

bool LocalKeyFilter::eventFilter(QObject* receiver, QEvent* event) {
    const auto type = event->type();
    const bool isAnnouncement = type == QEvent::ShortcutOverride;
    if (type != QEvent::KeyPress && type != QEvent::KeyRelease && !isAnnouncement) {
        return false;
    }
    // A key comes to the window first and then goes on to the widgets inside; it is asked about
    // once. The announcement goes to where the focus is.
    if (!isAnnouncement && !receiver->isWindowType()) {
        return false;
    }
    const auto& key = *static_cast<QKeyEvent*>(event);
    const auto keycode = key.nativeScanCode();
    if (keycode == 0 || keycode > std::numeric_limits<KeyboardLayout::Keycode>::max()) {
        return false; // not from a keyboard
    }
    const auto answer = ask_({.keycode = static_cast<KeyboardLayout::Keycode>(keycode),
                              .isDown = type != QEvent::KeyRelease,
                              .isARepeat = key.isAutoRepeat(),
                              .isAnnouncement = isAnnouncement});
    if (answer == KeyEventAnswer::passOn || closesMenu(key)) {
        return false;
    }
    event->accept(); // of an announcement: no shortcut of the window's is to act on it
    return true;
}

} // namespace orlune
