// The menu of the program's tray icon. Its items follow the state at all times, because panels keep
// a copy of the menu. Main thread.
#pragma once

#include "dictation/AppState.h"
#include "ui/Observation.h"

#include <QMenu>

#include <functional>
#include <memory>

namespace orlune {

class MenuBarContent {
  public:
    /// The actions of items that do not belong to the state.
    struct Actions {
        std::function<void()> openMainWindow;
        std::function<void()> openSettings;
        std::function<void()> quit;
    };

    MenuBarContent(std::shared_ptr<AppState> state, Actions actions);

    QMenu& menu() { return menu_; }

    /// "Stop Dictation" while a dictation listens, else "Start Dictation".
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
