// The user's display settings for the whole desktop. Main thread; follows changes.
#pragma once

#include "platform/concurrency/Published.h"

namespace orlune {

class DisplayOptions {
  public:
    virtual ~DisplayOptions() = default;

    /// True when movement without meaning should be left out.
    virtual const Published<bool>& shouldReduceMotion() const = 0;
};

} // namespace orlune
