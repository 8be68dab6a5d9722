// How the program sees its shortcut, pastes and copies in this session, and what the user must
// allow for it. Selected once, from what the desktop offers. Main thread, after the application
// object.
#pragma once

#include "platform/Accessibility.h"
#include "platform/KeyEventPosting.h"
#include "platform/KeyEvents.h"
#include "platform/Log.h"
#include "platform/Pasteboard.h"
#include "platform/linux/storage/PlatformConfiguration.h"

#include <functional>
#include <memory>
#include <string>

namespace orlune {

class SessionInput {
  public:
    /// Tells the user what keeps text from being pasted and how to allow it; returns at once.
    using TrustPrompt = std::function<void(const std::string& reason)>;

    SessionInput(const PlatformConfiguration& configuration, TrustPrompt trustPrompt, Log& log);
    ~SessionInput();

    KeyEvents& keyEvents();
    KeyEventPosting& keyEventPosting();
    Pasteboard& pasteboard();
    Accessibility& accessibility();

    /// While the screen is locked no key is reported; locking releases all held keys.
    void setLocked(bool isLocked);

  private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace orlune
