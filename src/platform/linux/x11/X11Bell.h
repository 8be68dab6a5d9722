// The bell of an X display, which desktops turn into the alert of their sound theme or mute.
// Connects at the first beep. Main thread. Without a display there is no sound.
#pragma once

#include "platform/Sound.h"

#include <memory>
#include <string>

namespace orlune {

class XConnection;

class X11Bell final : public Sound {
  public:
    /// An empty display name means the DISPLAY of the environment.
    explicit X11Bell(std::string displayName = {});
    ~X11Bell() override;

    void beep() override;

  private:
    std::string displayName_;
    std::unique_ptr<XConnection> connection_;
};

} // namespace orlune
