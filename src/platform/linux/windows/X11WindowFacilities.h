// The window facilities of an X desktop. Opens its own connection on first use and follows changes
// from then on; it is idle while nothing changes. Main thread, with Qt's loop running. Without a
// display, or once it has gone, nothing is composited or announced.
#pragma once

#include "platform/WindowFacilities.h"

#include <memory>
#include <string>

namespace orlune {

class X11WindowFacilities final : public WindowFacilities {
  public:
    /// An empty display name means the DISPLAY of the environment.
    explicit X11WindowFacilities(std::string displayName = {});
    ~X11WindowFacilities() override;

    const Published<bool>& isCompositing() const override;
    Signal<void()>& activeWindowDidChange() override;
    /// `window` is one of Qt's, which need not have been shown yet.
    void setBlurBehind(WindowID window, const std::vector<Rect>& region, double scale) override;
    void activate(WindowID window) override;

  private:
    class Watch;
    Watch& watch() const;

    std::string displayName_;
    mutable std::unique_ptr<Watch> watch_; ///< created on first use
};

} // namespace orlune
