// The program's windows, made when they are first opened and kept from then on: a program that
// waits in the background holds none. Main thread; the facilities outlive it.
#pragma once

#include "dictation/AppState.h"

#include <functional>
#include <memory>

class QWidget;

namespace orlune {

class MainWindow;
class SettingsWindow;

class AppWindows {
  public:
    AppWindows(std::shared_ptr<AppState> state, const Platform& platform,
               std::function<void()> quit);
    ~AppWindows();

    /// As any new window appears; the desktop decides where it lies and whether it has the
    /// keyboard.
    void showMain();
    /// Brings forward what is open and not minimised, the settings last, which are opened over the
    /// main window. False when nothing is.
    bool activate();
    void presentMain();
    void presentSettings();

  private:
    MainWindow& mainWindow();
    void addShortcuts(QWidget& window);

    const std::shared_ptr<AppState> state_;
    const Platform& platform_;
    const std::function<void()> quit_;
    std::unique_ptr<MainWindow> main_;
    std::unique_ptr<SettingsWindow> settings_;
};

} // namespace orlune
