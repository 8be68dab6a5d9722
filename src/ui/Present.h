// Brings a window to the user who has asked for it. Main thread.
#pragma once

class QWidget;

namespace orlune {

class WindowFacilities;

namespace ui {

/// Shows the window, restores it if it is minimised, and puts it in front of all others with the
/// keyboard focus.
void present(QWidget& window, WindowFacilities& windowFacilities);

} // namespace ui
} // namespace orlune
