#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>

namespace orlune {

/// Where work runs: a main thread, a strand, an I/O thread. Every executor of the program is
/// serial.
using Executor = boost::asio::any_io_executor;

/// The result of an asynchronous operation: a coroutine that runs when it is awaited.
template <typename Value>
using Awaitable = boost::asio::awaitable<Value>;

} // namespace orlune
