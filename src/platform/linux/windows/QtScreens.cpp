#include "platform/linux/windows/QtScreens.h"

#include "platform/linux/windows/WorkArea.h"
#include "platform/linux/x11/QtConnection.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace orlune {

namespace {

bool hasWindows() {
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

WorkArea workArea() {
    auto* connection = qtConnection();
    return connection ? WorkArea::read(connection) : WorkArea{};
}

Rect rectOf(const QRect& rect) {
    return {static_cast<double>(rect.x()), static_cast<double>(rect.y()),
            static_cast<double>(rect.width()), static_cast<double>(rect.height())};
}

/// With a scale factor, Qt keeps the origin of each screen in device pixels and divides everything
/// within the screen by the factor.
Screen screenOf(const QScreen& screen, const WorkArea& workArea) {
    const Rect frame = rectOf(screen.geometry());
    // Subtracts what the window manager reports as taken. It reports it for the whole desktop,
    // which is only meaningful with a single screen.
    const bool isSingle = screen.virtualSiblings().size() == 1;
    const Rect available = isSingle ? rectOf(screen.availableGeometry()) : frame;
    const double scale = screen.devicePixelRatio();
    const auto nativeX = [&](double x) { return frame.x + (x - frame.x) * scale; };
    const auto nativeY = [&](double y) { return frame.y + (y - frame.y) * scale; };
    const Rect free = workArea.within({.x = nativeX(available.x),
                                       .y = nativeY(available.y),
                                       .width = available.width * scale,
                                       .height = available.height * scale});
    return {.frame = frame,
            .visibleFrame = {.x = frame.x + (free.x - frame.x) / scale,
                             .y = frame.y + (free.y - frame.y) / scale,
                             .width = free.width / scale,
                             .height = free.height / scale}};
}

} // namespace

Point QtScreens::pointerLocation() {
    if (!hasWindows()) {
        return {};
    }
    const auto position = QCursor::pos();
    return {.x = static_cast<double>(position.x()), .y = static_cast<double>(position.y())};
}

std::vector<Screen> QtScreens::all() {
    std::vector<Screen> screens;
    if (hasWindows()) {
        const auto area = workArea();
        for (const auto* screen : QGuiApplication::screens()) {
            screens.push_back(screenOf(*screen, area));
        }
    }
    return screens;
}

std::optional<Screen> QtScreens::main() {
    const auto* screen = hasWindows() ? QGuiApplication::primaryScreen() : nullptr;
    return screen ? std::optional(screenOf(*screen, workArea())) : std::nullopt;
}

} // namespace orlune
