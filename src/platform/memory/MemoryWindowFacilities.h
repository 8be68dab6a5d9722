// Window facilities without windows: a test switches compositing, and blurred and activated windows
// are recorded.
#pragma once

#include "platform/WindowFacilities.h"

#include <map>
#include <vector>

namespace orlune {

class MemoryWindowFacilities final : public WindowFacilities, public ObservableObject {
  public:
    const Published<bool>& isCompositing() const override { return compositing; }
    Signal<void()>& activeWindowDidChange() override { return activeWindow; }
    void setBlurBehind(WindowID window, const std::vector<Rect>& region,
                       double /*scale*/) override {
        if (region.empty()) {
            blurred.erase(window);
        } else {
            blurred[window] = region;
        }
    }

    void activate(WindowID window) override { activated.push_back(window); }

    Published<bool> compositing{*this, true};
    Signal<void()> activeWindow;
    std::map<WindowID, std::vector<Rect>> blurred;
    std::vector<WindowID> activated;
};

} // namespace orlune
