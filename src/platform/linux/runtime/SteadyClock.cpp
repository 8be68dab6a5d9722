#include "platform/linux/runtime/SteadyClock.h"

#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace orlune {

Awaitable<void> SteadyClock::sleep(Duration duration) {
    boost::asio::steady_timer timer(context_, duration);
    auto waiting = timer.async_wait(boost::asio::use_awaitable);
    co_await std::move(waiting);
}

} // namespace orlune
