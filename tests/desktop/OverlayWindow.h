// The overlay's panel as the X server and other programs see it, and a window of another program
// that writes down the clicks it receives. Main thread.
#pragma once

#include <QRect>

#include <optional>
#include <string>

struct _XDisplay;

namespace orlune::desktop {

struct OverlayWindow {
    QRect geometry;
    bool isOnTop; ///< of all windows on the screen
};

/// The panel while it is mapped.
std::optional<OverlayWindow> overlayWindow();

/// Moves the pointer, in pixels of the whole screen.
void movePointer(QPoint place);
/// Presses and releases its first button.
void click();

class ClickRecorder {
  public:
    /// A window in the place given, below all others.
    explicit ClickRecorder(const QRect& place);
    ~ClickRecorder();
    ClickRecorder(const ClickRecorder&) = delete;
    ClickRecorder& operator=(const ClickRecorder&) = delete;

    /// Received so far.
    int clicks();

  private:
    _XDisplay* display_;
    int clicks_ = 0;
};

} // namespace orlune::desktop
