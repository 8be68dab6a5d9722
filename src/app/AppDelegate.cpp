#include "app/AppDelegate.h"

#include "overlay/OverlayWindowController.h"

#include <QCoreApplication>
#include <QTimer>

#include <chrono>
#include <utility>

namespace orlune {

namespace {

/// From the end of the launch until its window comes to the front.
constexpr auto activationDelay = std::chrono::milliseconds(200);

void callIfSet(const std::function<void()>& action) {
    if (action) {
        action();
    }
}

} // namespace

AppDelegate::AppDelegate(std::shared_ptr<AppState> state, const Platform& platform, Windows windows)
    : state_(std::move(state)), platform_(platform), windows_(std::move(windows)) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching(bool opensWindow) {
    overlay_ = std::make_unique<OverlayWindowController>(state_, platform_);
    hotkey_ = FnPushToTalkMonitor::make(state_, platform_.keyEventMonitors, platform_.mainActor);
    hotkey_->start();
    if (opensWindow) {
        callIfSet(windows_.showMain);
        QTimer::singleShot(activationDelay, qApp, [this] { activate(); });
    }
}

void AppDelegate::applicationShouldHandleReopen() {
    if (!activate()) {
        openMainWindow();
    }
}

bool AppDelegate::activate() const {
    return windows_.activate && windows_.activate();
}

void AppDelegate::openMainWindow() const {
    callIfSet(windows_.openMain);
}

void AppDelegate::openSettings() const {
    callIfSet(windows_.openSettings);
}

} // namespace orlune
