// The program's windows. Each is created when it is first opened and then kept, so that a program
// in the background holds none. Main thread; the facilities must outlive it.
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

    /// Shows the main window like any new window; the desktop decides about its place and focus.
    void showMain();
    /// Brings open windows that are not minimised to the front, the settings last, because they
    /// open over the main window. False when there are none.
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
