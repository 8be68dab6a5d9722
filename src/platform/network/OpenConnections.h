// The connections of one session that still hold a TCP connection, so that a program can close them
// and wait for their end before it leaves. Shared by the session and its connections; any thread.
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

    /// Counts as open until the last copy of what is returned has gone.
    std::shared_ptr<void> hold();

    /// Closes those that nobody has closed yet, as going away, and waits until all are gone. False
    /// when some are left after `limit`. Their executor has to run meanwhile.
    bool close(std::chrono::milliseconds limit);

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::weak_ptr<BeastConnection>> connections_;
    int heldCount_ = 0;
};

} // namespace orlune
