// The screens and the pointer as Qt sees them, and what the panels of an X desktop leave of each
// screen. Queries again at each call, which takes well under a millisecond. Main thread. A program
// without windows, such as a command of the terminal, has no screens.
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
