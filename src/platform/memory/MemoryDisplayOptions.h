// Display options that a test sets.
#pragma once

#include "platform/DisplayOptions.h"

namespace orlune {

class MemoryDisplayOptions final : public DisplayOptions, public ObservableObject {
  public:
    const Published<bool>& shouldReduceMotion() const override { return reduceMotion; }

    Published<bool> reduceMotion{*this, false};
};

} // namespace orlune
