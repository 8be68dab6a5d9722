// Another program of the display, doing what our own keyboard code must live with.
#pragma once

#include "tests/desktop/Desktop.h"

namespace orlune::desktop {

class OtherClient {
  public:
    OtherClient();
    /// Gives everything back.
    ~OtherClient();
    OtherClient(const OtherClient&) = delete;
    OtherClient& operator=(const OtherClient&) = delete;

    /// True when every key now comes to it alone.
    bool grabKeyboard();

    /// A key as programs send it, not as keyboards do.
    void type(Keyboard::Keycode key, bool isDown);

    void unplugKeyboard();
    void plugKeyboardIn();

  private:
    int findDevice(int use) const;

    _XDisplay* display_;
    int unplugged_ = 0; ///< by device number
};

} // namespace orlune::desktop
