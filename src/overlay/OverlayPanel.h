// The overlay's window: frameless, above everything on every workspace, transparent to the pointer
// and never focused. It is translucent where the desktop composites it, elsewhere opaque and cut to
// the outline of its content. Main thread.
#pragma once

#include "overlay/OverlayView.h"
#include "platform/WindowFacilities.h"

#include <QWidget>

#include <memory>
#include <vector>

namespace orlune {

class OverlayPanel final : public QWidget {
  public:
    OverlayPanel(std::shared_ptr<AppState> state, const Platform& platform);

    OverlayView& content() { return *content_; }

    /// Places it above all other windows, whichever program is active.
    void orderFront();
    /// Hides it; the window and its picture are made anew for the next dictation.
    void orderOut();

  private:
    void setTranslucent(bool isTranslucent);
    /// Fits the window's shape, or the blur behind it, to the content.
    void updateOutline();

    WindowFacilities& windowFacilities_;
    OverlayView* content_;
    std::vector<Subscription> subscriptions_;
};

} // namespace orlune
