// The general pasteboard: the contents that a paste in any program inserts. Main actor.
#pragma once

#include <string>

namespace orlune {

class Pasteboard {
  public:
    virtual ~Pasteboard() = default;

    virtual void clearContents() = 0;
    /// Offers `text` (UTF-8) as plain text and nothing else. False when the desktop refused; the
    /// text is then offered again in the next turn, so that the user can paste it.
    virtual bool setString(const std::string& text) = 0;
};

} // namespace orlune
