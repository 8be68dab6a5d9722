#include "ui/Present.h"

#include "platform/WindowServer.h"

#include <QWidget>

namespace orlune::ui {

void present(QWidget& window, WindowServer& windowServer) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    // Where no window manager is asked, the toolkit sets the focus itself.
    window.activateWindow();
    windowServer.activate(window.winId());
}

} // namespace orlune::ui
