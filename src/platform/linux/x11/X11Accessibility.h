// Whether this X display lets the program see and post keys. Opens its own connection for each
// query, so the answer is always current. Main thread; the prompt is called there. A display that
// is missing, gone or refuses us is reported as not trusted, with a reason.
#pragma once

#include "platform/Accessibility.h"

#include <functional>
#include <memory>
#include <string>

namespace orlune {

class XConnection;

class X11Accessibility final : public Accessibility {
  public:
    /// Shows `reason` to the user and returns at once. Called for every requested prompt; the
    /// callee must avoid stacking windows.
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
