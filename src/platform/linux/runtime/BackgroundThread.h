// The program's one I/O thread: sockets, timers and all work that may run on any thread. Ends with
// its owner; operations that still wait are unwound on the owner's thread.
#pragma once

#include "platform/concurrency/Awaitable.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>

#include <thread>

namespace orlune {

class BackgroundThread {
  public:
    BackgroundThread();
    ~BackgroundThread();
    BackgroundThread(const BackgroundThread&) = delete;
    BackgroundThread& operator=(const BackgroundThread&) = delete;

    boost::asio::io_context& context() { return context_; }
    Executor executor() { return context_.get_executor(); }

    /// Stops the thread and waits for it; nothing runs on it afterwards.
    void stop();

  private:
    void run();

    boost::asio::io_context context_{1};
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work_;
    std::jthread thread_;
};

} // namespace orlune
