// Counts the alerts instead of playing them.
#pragma once

#include "platform/Sound.h"

namespace orlune {

class MemorySound final : public Sound {
  public:
    void beep() override { ++beeps; }

    int beeps = 0;
};

} // namespace orlune
