#include "app/AppDelegate.h"

#include "overlay/OverlayWindowController.h"

#include <QCoreApplication>
#include <QTimer>

#include <chrono>
#include <utility>

namespace orlune {

namespace {

/// The delay between the end of the launch and bringing the window to the front.
constexpr auto activationDelay = std::chrono::milliseconds(200);

void callIfSet(const std::function<void()>& action) {
    if (action) {
        action();
    }
}

} // namespace

AppDelegate::AppDelegate(std::shared_ptr<AppState> state, const Platform& platform, Windows windows)
    : state_(std::move(state)), platform_(platform), windows_(std::move(windows)),
      observation_([this] { tellDesktop(); }) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching(bool opensWindow) {
    overlay_ = std::make_unique<OverlayWindowController>(state_, platform_);
    hotkey_ = FnPushToTalkMonitor::make(state_, platform_.keyEventMonitors, platform_.mainActor);
    hotkey_->start();
    observation_.observe(state_->shortcut());
    observation_.observe(state_->phase());
    tellDesktop();
    if (opensWindow) {
        callIfSet(windows_.showMain);
        QTimer::singleShot(activationDelay, qApp, [this] { activate(); });
    }
}

/// Some desktops show programs only the keys that they request, and let them post keys only while
/// the user sees an indicator. This passes the shortcut and the start and end of dictations to
/// them.
void AppDelegate::tellDesktop() {
    using Case = AppState::Phase::Case;
    platform_.keyEventMonitors.watch(state_->shortcut().get().keyCombination());
    const auto phase = state_->phase().get().kind();
    const bool isDictating =
        phase == Case::listening || phase == Case::processing || phase == Case::reviewing;
    if (isDictating != std::exchange(isDictating_, isDictating)) {
        platform_.keyEventMonitors.watchEscape(isDictating);
        if (isDictating) {
            platform_.keyEventPosting.prepare();
        } else {
            platform_.keyEventPosting.rest();
        }
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
