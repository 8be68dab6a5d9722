#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>

namespace orlune {

/// An executor runs work: the main thread, a strand, the I/O thread. Every executor of the program
/// is serial.
using Executor = boost::asio::any_io_executor;

/// The result of an asynchronous operation: a coroutine that runs when it is awaited.
///
/// Most operations are built in one statement and awaited in the next:
///
///     auto waiting = withContinuation<int>([state](auto continuation) { ... });
///     co_await std::move(waiting);
///
/// GCC 12 destroys a lambda with captures, or an aggregate in braces, twice when it is created
/// within a `co_await` expression, and gives no warning. In a statement of its own it is destroyed
/// once. An operation that takes no such argument may be awaited directly.
template <typename Value>
using Awaitable = boost::asio::awaitable<Value>;

} // namespace orlune
