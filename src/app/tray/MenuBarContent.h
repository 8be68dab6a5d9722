// The menu of the program's tray icon. What its items say follows the state at all times, because
// panels keep a copy of it. Main thread.
#pragma once

#include "dictation/AppState.h"
#include "ui/Observation.h"

#include <QMenu>

#include <functional>
#include <memory>

namespace orlune {

class MenuBarContent {
  public:
    /// What the items do that is not the state's.
    struct Actions {
        std::function<void()> openMainWindow;
        std::function<void()> openSettings;
        std::function<void()> quit;
    };

    MenuBarContent(std::shared_ptr<AppState> state, Actions actions);

    QMenu& menu() { return menu_; }

    /// "Stop Dictation" while one listens, else "Start Dictation".
    static QString dictationTitle(const AppState& state);

  private:
    QAction* add(const QString& title, const char* shortcut, std::function<void()> action);
    void toggleDictation() const;
    void refresh();

    const std::shared_ptr<AppState> state_;
    QMenu menu_;
    QAction* dictation_ = nullptr;
    QAction* enabled_ = nullptr;
    QAction* instruction_ = nullptr;
    ui::Observation observation_;
};

} // namespace orlune
