// Counts the bells of the X server, whoever rings them. Main thread.
#pragma once

struct _XDisplay;

namespace orlune::desktop {

class BellListener {
  public:
    BellListener();
    ~BellListener();
    BellListener(const BellListener&) = delete;
    BellListener& operator=(const BellListener&) = delete;

    /// The number of bells so far.
    int count();

  private:
    _XDisplay* display_;
    int event_ = 0; ///< the number of XKB's events, of which one kind was selected
    int count_ = 0;
};

} // namespace orlune::desktop
