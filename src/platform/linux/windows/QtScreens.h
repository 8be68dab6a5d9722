// The screens and the pointer as Qt sees them, and what the panels of an X desktop leave of each
// screen. Asks anew each time, which takes well under a millisecond. Main thread. Without windows,
// as in a program for the terminal, there are no screens.
#pragma once

#include "platform/Screens.h"

namespace orlune {

class QtScreens final : public Screens {
  public:
    Point pointerLocation() override;
    std::vector<Screen> all() override;
    std::optional<Screen> main() override;
};

} // namespace orlune
