// Keeps a connection open for a moment longer than this process lives, however it ends, so that its
// server carries out what it was asked to delay. Held by a process that only sleeps: nothing in a
// process survives its being killed. Main thread, with Qt's loop running.
#pragma once

#include <memory>
#include <sys/types.h>

class QTimer;

namespace orlune {

class ConnectionKeeper {
  public:
    ConnectionKeeper();
    /// The connection is kept no longer.
    ~ConnectionKeeper();
    ConnectionKeeper(const ConnectionKeeper&) = delete;
    ConnectionKeeper& operator=(const ConnectionKeeper&) = delete;

    /// Keeps it for one second from now. Where no process can be started, it is not kept.
    void keep(int descriptor);

  private:
    void collect();

    pid_t sleeping_ = 0;
    std::unique_ptr<QTimer> collecting_;
};

} // namespace orlune
