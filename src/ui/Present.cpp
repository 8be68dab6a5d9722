#include "ui/Present.h"

#include "platform/WindowFacilities.h"

#include <QWidget>

namespace orlune::ui {

void present(QWidget& window, WindowFacilities& windowFacilities) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    windowFacilities.activate(window.winId());
    // Without a window manager, the toolkit sets the focus itself. This comes last: if it came
    // first, some desktops would announce that the window is ready instead.
    window.activateWindow();
}

} // namespace orlune::ui
