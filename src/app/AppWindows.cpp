#include "app/AppWindows.h"

#include "mainwindow/MainWindow.h"
#include "settings/SettingsWindow.h"

#include <QShortcut>

#include <utility>

namespace orlune {

AppWindows::AppWindows(std::shared_ptr<AppState> state, const Platform& platform,
                       std::function<void()> quit)
    : state_(std::move(state)), platform_(platform), quit_(std::move(quit)) {}

AppWindows::~AppWindows() = default;

void AppWindows::showMain() {
    mainWindow().show();
}

bool AppWindows::activate() {
    const auto isOpen = [](const auto& window) {
        return window && window->isVisible() && !window->isMinimized();
    };
    const bool isMainOpen = isOpen(main_);
    const bool areSettingsOpen = isOpen(settings_);
    if (isMainOpen) {
        main_->present();
    }
    if (areSettingsOpen) {
        settings_->present();
    }
    return isMainOpen || areSettingsOpen;
}

void AppWindows::presentMain() {
    mainWindow().present();
}

void AppWindows::presentSettings() {
    if (!settings_) {
        settings_ = std::make_unique<SettingsWindow>(state_, platform_);
        addShortcuts(*settings_);
    }
    settings_->present();
}

MainWindow& AppWindows::mainWindow() {
    if (!main_) {
        main_ = std::make_unique<MainWindow>(
            state_, platform_,
            MainWindow::Callbacks{.openSettings = [this] { presentSettings(); }});
        addShortcuts(*main_);
    }
    return *main_;
}

/// The menu's shortcuts also work in the windows.
void AppWindows::addShortcuts(QWidget& window) {
    const auto add = [&window](const char* keys, std::function<void()> action) {
        auto* shortcut = new QShortcut(QKeySequence(QString::fromLatin1(keys)), &window);
        QObject::connect(shortcut, &QShortcut::activated, &window, std::move(action));
    };
    add("Ctrl+O", [this] { presentMain(); });
    add("Ctrl+,", [this] { presentSettings(); });
    add("Ctrl+Q", quit_);
}

} // namespace orlune
