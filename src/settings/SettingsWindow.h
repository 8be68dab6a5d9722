// The window of the settings: as large as its page, dark, closed by Control-W, and by Escape where
// the dictation keys are not watched, which take it otherwise. Closing hides it and forgets a key
// that was entered and not saved. Main thread.
#pragma once

#include "dictation/AppState.h"

#include <QWidget>

#include <memory>

namespace orlune {

class SettingsView;

class SettingsWindow final : public QWidget {
  public:
    SettingsWindow(std::shared_ptr<AppState> state, const Platform& platform);

    /// Shows it, in front of the others and with the keyboard.
    void present();

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    WindowServer& windowServer_;
    SettingsView* view_;
};

} // namespace orlune
