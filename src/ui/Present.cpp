#include "ui/Present.h"

#include "platform/WindowServer.h"

#include <QWidget>

namespace orlune::ui {

void present(QWidget& window, WindowServer& windowServer) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    windowServer.activate(window.winId());
    // Without a window manager, the toolkit sets the focus itself. This comes last: if it came
    // first, some desktops would announce that the window is ready instead.
    window.activateWindow();
}

} // namespace orlune::ui
