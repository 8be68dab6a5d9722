// The base of an object whose fields belong to nobody but itself: every public operation hops to
// the actor's strand and back to the caller's executor. Like every strand it is re-entrant at each
// suspension: while one operation waits, another one may run.
#pragma once

#include "platform/Awaitable.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <utility>

namespace orlune {

class Actor {
  public:
    explicit Actor(const Executor& underlying) : strand_(boost::asio::make_strand(underlying)) {}
    Actor(const Actor&) = delete;
    Actor& operator=(const Actor&) = delete;

  protected:
    ~Actor() = default;

    /// The executor on which the actor's fields may be touched.
    const Executor& executor() const { return strand_; }

    /// Runs `operation` on the strand and returns its result on the caller's executor.
    template <typename Value>
    Awaitable<Value> isolated(Awaitable<Value> operation) const {
        auto hop = boost::asio::co_spawn(strand_, std::move(operation), boost::asio::use_awaitable);
        co_return co_await std::move(hop);
    }

  private:
    Executor strand_;
};

} // namespace orlune
