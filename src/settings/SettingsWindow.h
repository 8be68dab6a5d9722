// The window of the settings: as large as its page, dark. Control-W closes it, and so does Escape,
// unless the monitor of the dictation keys takes it. Closing hides it and clears an entered key
// that was not saved. Main thread.
#pragma once

#include "dictation/AppState.h"

#include <QWidget>

#include <memory>

namespace orlune {

class SettingsView;

class SettingsWindow final : public QWidget {
  public:
    SettingsWindow(std::shared_ptr<AppState> state, const Platform& platform);

    /// Shows it in front of the others, with the keyboard focus.
    void present();

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    WindowFacilities& windowFacilities_;
    SettingsView* view_;
};

} // namespace orlune
