// SIGTERM, SIGINT and SIGHUP as something to wait for in a loop. Installed on the main thread
// before others start; one exists at a time. The signals are caught, not blocked: programs that
// this one starts receive theirs as ever.
#pragma once

#include "platform/linux/runtime/FileDescriptor.h"

namespace orlune {

class TerminationSignals {
  public:
    /// Throws std::system_error.
    TerminationSignals();
    /// From here on the signals end the process again.
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    /// Readable once a signal has come.
    int descriptor() const { return wakeUp_.get(); }
    /// Until the next one comes.
    void take() const;

  private:
    FileDescriptor wakeUp_;
};

} // namespace orlune
