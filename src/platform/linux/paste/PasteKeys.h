// Which keys paste in a window. Nearly everywhere it is Control-V; terminals and some editors take
// that for something else. A plain value.
#pragma once

#include "platform/linux/x11/FocusedWindow.h"

#include <string>
#include <vector>

namespace orlune {

class PasteKeys {
  public:
    enum class Chord { controlV, shiftInsert, controlShiftV };

    /// `additional`: window classes the user named, in which Shift-Insert pastes, in addition to
    /// those known here.
    explicit PasteKeys(std::vector<std::string> additional);

    /// Exact comparison, with either of the two names a window gives.
    Chord of(const WindowClass& window) const;

  private:
    std::vector<std::string> additional_;
};

} // namespace orlune
