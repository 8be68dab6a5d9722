// Hears the bell of the X server, whoever rings it. Main thread.
#pragma once

struct _XDisplay;

namespace orlune::desktop {

class BellListener {
  public:
    BellListener();
    ~BellListener();
    BellListener(const BellListener&) = delete;
    BellListener& operator=(const BellListener&) = delete;

    /// How often it has rung so far.
    int count();

  private:
    _XDisplay* display_;
    int event_ = 0; ///< the number of XKB's events, of which it asked for one kind
    int count_ = 0;
};

} // namespace orlune::desktop
