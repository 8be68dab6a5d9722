// The base of an object whose fields are only used on its own strand: every public operation hops
// to the strand and back to the caller's executor. Like every strand it is re-entrant at each
// suspension: while one operation waits, another one may run.
#pragma once

#include "platform/concurrency/Continuation.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/strand.hpp>

#include <type_traits>
#include <utility>

namespace orlune {

class Actor {
  public:
    explicit Actor(const Executor& underlying) : strand_(boost::asio::make_strand(underlying)) {}
    Actor(const Actor&) = delete;
    Actor& operator=(const Actor&) = delete;

  protected:
    ~Actor() = default;

    /// The executor on which the actor's fields may be used.
    const Executor& executor() const { return strand_; }

    /// Runs `operation` on the strand and returns its result, or throws its exception, on the
    /// caller's executor. A caller that is cancelled stops waiting at once, but the operation runs
    /// on. It must therefore hold the actor by a shared pointer and its arguments by value.
    template <typename Value>
    Awaitable<Value> isolated(Awaitable<Value> operation) const {
        using Result = std::conditional_t<std::is_void_v<Value>, std::monostate, Value>;
        // No cancellation is passed through co_spawn: in Boost 1.81, a cancellation that crosses to
        // another executor may touch its signal after the operation has ended.
        auto hop = withContinuation<Result>(
            [strand = strand_, moved = std::move(operation)](Continuation<Result> caller) mutable {
                if constexpr (std::is_void_v<Value>) {
                    boost::asio::co_spawn(strand, std::move(moved),
                                          [caller](const std::exception_ptr& error) {
                                              error ? caller.fail(error) : caller.resume();
                                          });
                } else {
                    boost::asio::co_spawn(strand, std::move(moved),
                                          [caller](const std::exception_ptr& error, Value value) {
                                              error ? caller.fail(error)
                                                    : caller.resume(std::move(value));
                                          });
                }
            });
        if constexpr (std::is_void_v<Value>) {
            co_await std::move(hop);
        } else {
            co_return co_await std::move(hop);
        }
    }

  private:
    Executor strand_;
};

} // namespace orlune
