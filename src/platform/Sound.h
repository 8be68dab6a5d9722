// The desktop's own sounds. Main thread; returns at once.
#pragma once

namespace orlune {

class Sound {
  public:
    virtual ~Sound() = default;

    /// The alert for something that was refused. Silent where the user has muted it.
    virtual void beep() = 0;
};

} // namespace orlune
