// The overlay's window: without a frame, above everything on every workspace, transparent to the
// pointer and never focused. Where the desktop composites it is translucent, elsewhere opaque and
// cut to the outline of its content. Main thread.
#pragma once

#include "overlay/OverlayView.h"
#include "platform/WindowServer.h"

#include <QWidget>

#include <memory>
#include <vector>

namespace orlune {

class OverlayPanel final : public QWidget {
  public:
    OverlayPanel(std::shared_ptr<AppState> state, const Platform& platform);

    OverlayView& content() { return *content_; }

    /// Above all other windows, whichever program is active.
    void orderFront();
    /// Off the screen; the window and its picture are made anew for the next dictation.
    void orderOut();

  private:
    void setTranslucent(bool isTranslucent);
    /// Cuts the window, or the blur behind it, to what is shown.
    void updateOutline();

    WindowServer& windowServer_;
    OverlayView* content_;
    std::vector<Subscription> subscriptions_;
};

} // namespace orlune
