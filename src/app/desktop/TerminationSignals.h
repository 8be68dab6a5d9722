// SIGTERM, SIGINT and SIGHUP as a descriptor for a loop. Used on the main thread; only one may
// exist at a time. The signals are caught, not blocked, so that programs started by this one
// receive theirs as usual.
#pragma once

#include "platform/linux/runtime/FileDescriptor.h"

namespace orlune {

class TerminationSignals {
  public:
    /// Throws std::system_error.
    TerminationSignals();
    /// Restores the default: the signals end the process again.
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    /// Becomes readable when a signal arrives.
    int descriptor() const { return wakeUp_.get(); }
    /// Makes it unreadable until the next signal.
    void take() const;

  private:
    FileDescriptor wakeUp_;
};

} // namespace orlune
