#pragma once

// Lends recognisers to streams and keeps a few that are returned, because creating one takes long.
// Owned by the service; any thread may borrow or return. Borrowing throws what the factory throws.

#include "localservice/Recogniser.h"

#include <mutex>

namespace orlune::localservice {

class RecogniserPool : public std::enable_shared_from_this<RecogniserPool> {
  public:
    using Loan = std::unique_ptr<Recogniser, std::function<void(Recogniser*)>>;

    explicit RecogniserPool(RecogniserFactory factory) : factory_(std::move(factory)) {}

    /// Creates the first one now, so that the first stream does not wait for it.
    void warmUp() { borrow(); }

    Loan borrow() {
        auto recogniser = takeIdle();
        if (!recogniser) {
            recogniser = factory_();
        }
        return {recogniser.release(), [pool = shared_from_this()](Recogniser* returned) {
                    pool->giveBack(std::unique_ptr<Recogniser>(returned));
                }};
    }

  private:
    // A new dictation may begin while the one before it is still closing; more at once are rare.
    static constexpr std::size_t mostKept = 2;

    std::unique_ptr<Recogniser> takeIdle() {
        const std::scoped_lock lock(mutex_);
        if (idle_.empty()) {
            return nullptr;
        }
        auto recogniser = std::move(idle_.back());
        idle_.pop_back();
        return recogniser;
    }

    void giveBack(std::unique_ptr<Recogniser> recogniser) {
        const std::scoped_lock lock(mutex_);
        if (idle_.size() < mostKept) {
            idle_.push_back(std::move(recogniser));
        }
    }

    const RecogniserFactory factory_;
    std::mutex mutex_;
    std::vector<std::unique_ptr<Recogniser>> idle_;
};

} // namespace orlune::localservice
