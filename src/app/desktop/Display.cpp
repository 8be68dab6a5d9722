#include "app/desktop/Display.h"

#include "platform/linux/x11/XConnection.h"

#include <QByteArray>

#include <cstdlib>

namespace orlune {

namespace {

constexpr auto toolkitPlatform = "QT_QPA_PLATFORM";

} // namespace

std::optional<std::string> displayProblem() {
    const char* display = std::getenv("DISPLAY");
    if (!display || !*display) {
        return "DISPLAY isn't set";
    }
    if (!XConnection::open(display)) {
        return std::string(display) + " can't be opened";
    }
    return std::nullopt;
}

bool chooseX() {
    const auto chosen = qgetenv(toolkitPlatform);
    if (chosen.isEmpty()) {
        qputenv(toolkitPlatform, "xcb");
    }
    return chosen.isEmpty() || chosen.startsWith("xcb");
}

} // namespace orlune
