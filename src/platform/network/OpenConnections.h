// The connections of one session that still hold a TCP connection, so that a program can close them
// and wait for their end before it exits. Shared by the session and its connections; any thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

namespace orlune {

class BeastConnection;

class OpenConnections : public std::enable_shared_from_this<OpenConnections> {
  public:
    void add(std::weak_ptr<BeastConnection> connection);

    /// Counts as one open connection until the last copy of the returned handle is gone.
    std::shared_ptr<void> hold();

    /// Closes with `goingAway` those that are still open, and waits until all are gone. False when
    /// some are left after `limit`. Their executor must run meanwhile.
    bool close(std::chrono::milliseconds limit);

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::weak_ptr<BeastConnection>> connections_;
    int heldCount_ = 0;
};

} // namespace orlune
