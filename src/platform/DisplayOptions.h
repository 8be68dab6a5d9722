// How the user wants things shown, as set for the whole desktop. Main thread; follows the setting.
#pragma once

#include "platform/concurrency/Published.h"

namespace orlune {

class DisplayOptions {
  public:
    virtual ~DisplayOptions() = default;

    /// Movement that carries no meaning is to be left out.
    virtual const Published<bool>& shouldReduceMotion() const = 0;
};

} // namespace orlune
