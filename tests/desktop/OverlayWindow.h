// The overlay's panel as the X server and other programs see it, and a window of another program
// that records its clicks. Main thread.
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
/// Presses and releases the pointer's first button.
void click();

class ClickRecorder {
  public:
    /// A window at this place, below all others.
    explicit ClickRecorder(const QRect& place);
    ~ClickRecorder();
    ClickRecorder(const ClickRecorder&) = delete;
    ClickRecorder& operator=(const ClickRecorder&) = delete;

    /// The number of clicks so far.
    int clicks();

  private:
    _XDisplay* display_;
    int clicks_ = 0;
};

} // namespace orlune::desktop
