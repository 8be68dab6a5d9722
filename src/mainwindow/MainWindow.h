// The main window. It is created once and kept: closing it only hides it. It remembers neither its
// size nor its place. Main thread; the facilities must outlive it.
#pragma once

#include "dictation/AppState.h"

#include <QWidget>

#include <functional>
#include <memory>

namespace orlune {

class MainWindow final : public QWidget {
  public:
    struct Callbacks {
        std::function<void()> openSettings;
    };

    MainWindow(std::shared_ptr<AppState> state, const Platform& platform, Callbacks callbacks);

    /// Shows it in front of all others, with the keyboard focus.
    void present();

  private:
    WindowFacilities& windowFacilities_;
};

} // namespace orlune
