// How a window comes to the user who has asked for it. Main thread.
#pragma once

class QWidget;

namespace orlune {

class WindowServer;

namespace ui {

/// Shows the window, brings it back if it is minimised, in front of all others and with the
/// keyboard.
void present(QWidget& window, WindowServer& windowServer);

} // namespace ui
} // namespace orlune
