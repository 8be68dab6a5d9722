// What the desktop lets this program do with other programs' windows: see keys and post them.
#pragma once

#include <string>

namespace orlune {

class Accessibility {
  public:
    virtual ~Accessibility() = default;

    /// True when keys can be posted into other programs in this session.
    virtual bool isProcessTrusted() = 0;
    /// The same; with `prompt`, and when not trusted, the user is told what is missing and how to
    /// grant it. Returns at once, without waiting for the user.
    virtual bool isProcessTrustedWithOptions(bool prompt) = 0;
    /// Why the process is not trusted, for a person; empty when it is.
    virtual std::string reasonForDistrust() = 0;
};

} // namespace orlune
