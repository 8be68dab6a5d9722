// Tells terminals from other windows: they take Control-V for themselves and paste on Shift-Insert.
// A plain value.
#pragma once

#include "platform/linux/FocusedWindow.h"

#include <string>
#include <vector>

namespace orlune {

class TerminalWindows {
  public:
    /// `additional`: window classes the user named, beside those known here.
    explicit TerminalWindows(std::vector<std::string> additional);

    /// Exact comparison, with either of the two names a window gives.
    bool include(const WindowClass& window) const;

  private:
    std::vector<std::string> additional_;
};

} // namespace orlune
