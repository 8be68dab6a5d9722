#pragma once

// Lets coroutines of one thread wait for a change. Owned by the owner of the state that changes. A
// waiter must check its condition again after each wake-up; nothing is remembered between waits.

#include <boost/asio/awaitable.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace orlune::localservice {

class Signal {
  public:
    explicit Signal(const boost::asio::any_io_executor& executor)
        : timer_(executor, boost::asio::steady_timer::time_point::max()) {}

    void notify() { timer_.cancel(); }

    boost::asio::awaitable<void> wait() {
        boost::system::error_code woken;
        auto token = boost::asio::redirect_error(boost::asio::use_awaitable, woken);
        co_await timer_.async_wait(token);
    }

  private:
    boost::asio::steady_timer timer_;
};

} // namespace orlune::localservice
