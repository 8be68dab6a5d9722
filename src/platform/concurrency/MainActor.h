// The main thread as an executor: all state, views, capture set-up, secrets and insertion live
// there.
#pragma once

#include "platform/concurrency/Awaitable.h"

#include <cassert>

namespace orlune {

class MainActor {
  public:
    virtual ~MainActor() = default;

    /// Work posted here runs on the main thread, in order, one after the other.
    virtual Executor executor() const = 0;
    virtual bool isCurrent() const = 0;

    /// To be called first wherever being on the main thread matters.
    void assertCurrent() const { assert(isCurrent()); }
};

} // namespace orlune
