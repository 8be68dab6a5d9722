// The last words that were said and did not reach another program: kept in memory only, for a
// while, so that a broken connection or an Escape by mistake loses nothing. A plain value; one
// thread.
#pragma once

#include "platform/SecureWipe.h"
#include "platform/concurrency/Clock.h"

#include <chrono>
#include <string>
#include <utility>

namespace orlune {

class UninsertedText {
  public:
    /// Long enough to notice a loss and ask for the words; after that nobody expects them here.
    static constexpr std::chrono::minutes keptFor{10};

    UninsertedText() = default;
    ~UninsertedText() { wipe(text_); }
    UninsertedText(const UninsertedText&) = delete;
    UninsertedText& operator=(const UninsertedText&) = delete;

    /// Replaces what was kept before.
    void keep(std::string text, Clock::Instant now) {
        wipe(text_);
        text_ = std::move(text);
        end_ = now + keptFor;
    }
    void forget() { wipe(text_); }
    /// Forgets what has been kept for long enough.
    void expire(Clock::Instant now) {
        if (now >= end_) {
            forget();
        }
    }

    /// Empty when nothing is kept.
    const std::string& text() const { return text_; }

  private:
    std::string text_;
    Clock::Instant end_;
};

} // namespace orlune
