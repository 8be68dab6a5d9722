// Another program of the display that interferes with our keyboard code.
#pragma once

#include "tests/desktop/Desktop.h"

namespace orlune::desktop {

class OtherClient {
  public:
    OtherClient();
    /// Undoes all changes.
    ~OtherClient();
    OtherClient(const OtherClient&) = delete;
    OtherClient& operator=(const OtherClient&) = delete;

    /// True when it receives every key exclusively from now on.
    bool grabKeyboard();

    /// Sends a key as programs do, not as keyboards do.
    void type(Keyboard::Keycode key, bool isDown);

    void unplugKeyboard();
    void plugKeyboardIn();

  private:
    int findDevice(int use) const;

    _XDisplay* display_;
    int unplugged_ = 0; ///< by device number
};

} // namespace orlune::desktop
