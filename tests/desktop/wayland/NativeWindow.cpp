#include "tests/desktop/wayland/NativeWindow.h"

#include "tests/desktop/Desktop.h"

#include <stdexcept>

namespace orlune::desktop {

namespace {

using Toolkit = NativeWindow::Toolkit;

/// foot of Debian 12 divides by zero in KWin's virtual screen, which has no refresh rate.
QStringList terminal() {
    if (qEnvironmentVariable("XDG_CURRENT_DESKTOP") == "KDE") {
        return {"konsole", "--separate", "-e"};
    }
    return {"foot", "--log-level=none"};
}

QStringList command(Toolkit toolkit) {
    switch (toolkit) {
    case Toolkit::gtk:
        return {ORLUNE_GTK_TARGET};
    case Toolkit::qt:
        return {ORLUNE_QT_TARGET};
    case Toolkit::terminal:
        return QStringList{ORLUNE_TERMINAL_TARGET} + terminal();
    }
    return {};
}

} // namespace

NativeWindow::NativeWindow(Toolkit toolkit) {
    const auto words = command(toolkit);
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(words.constFirst(), words.mid(1));
    // A terminal's program starts on its own time.
    isReading_ = toolkit != Toolkit::terminal;
    if (!waitUntil([this] {
            read();
            return (hasKeyboard_ && isReading_) || process_.state() == QProcess::NotRunning;
        })
        || process_.state() == QProcess::NotRunning) {
        throw std::runtime_error("no window with the keyboard: " + words.join(' ').toStdString());
    }
}

NativeWindow::~NativeWindow() {
    process_.kill();
    process_.waitForFinished();
}

bool NativeWindow::hasKeyboard() {
    read();
    return hasKeyboard_;
}

std::string NativeWindow::text() {
    read();
    return text_;
}

bool NativeWindow::receives(const std::string& wanted) {
    return waitUntil([&] { return text() == wanted; });
}

void NativeWindow::read() {
    static const std::string textMark = "text ";
    while (process_.canReadLine()) {
        auto line = process_.readLine().toStdString();
        line.pop_back();
        if (line.starts_with(textMark)) {
            isReading_ = true;
            text_ = line.substr(textMark.size());
        } else {
            hasKeyboard_ = line == "focus in";
        }
    }
}

} // namespace orlune::desktop
