// Whether this X display lets the program see keys and post them. Asks on a connection of its own
// each time, so the answer follows the display. Main thread; the prompt is called there. A display
// that is missing, gone or closed to us is distrust with a reason.
#pragma once

#include "platform/Accessibility.h"

#include <functional>
#include <memory>
#include <string>

namespace orlune {

class XConnection;

class X11Accessibility final : public Accessibility {
  public:
    /// Tells the user `reason` and returns at once. Called for every prompt that is asked for; not
    /// to stack windows is the callee's matter.
    using Prompt = std::function<void(const std::string& reason)>;

    /// An empty display name means the DISPLAY of the environment.
    explicit X11Accessibility(Prompt prompt, std::string displayName = {});
    ~X11Accessibility() override;

    bool isProcessTrusted() override;
    bool isProcessTrustedWithOptions(bool prompt) override;
    std::string reasonForDistrust() override;

  private:
    Prompt prompt_;
    std::string displayName_;
    std::unique_ptr<XConnection> connection_;
    std::string reasonOfConnection_;
};

} // namespace orlune
