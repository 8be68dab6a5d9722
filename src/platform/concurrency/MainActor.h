// The main thread as an executor. All state, views, capture set-up, secrets and insertion live on
// it.
#pragma once

#include "platform/concurrency/Awaitable.h"

#include <cassert>

namespace orlune {

class MainActor {
  public:
    virtual ~MainActor() = default;

    /// Work posted here runs on the main thread, in order, one item at a time.
    virtual Executor executor() const = 0;
    virtual bool isCurrent() const = 0;

    /// To be called first in every function that must run on the main thread.
    void assertCurrent() const { assert(isCurrent()); }
};

} // namespace orlune
