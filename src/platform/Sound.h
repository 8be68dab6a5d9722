// The desktop's own sounds. Main thread; returns at once.
#pragma once

namespace orlune {

class Sound {
  public:
    virtual ~Sound() = default;

    /// The alert that says that something was refused. Silent where the user wants it silent.
    virtual void beep() = 0;
};

} // namespace orlune
