// Whether the desktop lets this program see and post keys in other programs' windows.
#pragma once

#include <string>

namespace orlune {

class Accessibility {
  public:
    virtual ~Accessibility() = default;

    /// True when keys can be posted into other programs in this session.
    virtual bool isProcessTrusted() = 0;
    /// The same. With `prompt`, and when not trusted, also shows the user what is missing and how
    /// to grant it. Returns at once, without waiting for the user.
    virtual bool isProcessTrustedWithOptions(bool prompt) = 0;
    /// Why the process is not trusted, as a text for the user; empty when it is trusted.
    virtual std::string reasonForDistrust() = 0;
};

} // namespace orlune
