// The last dictated words that did not reach another program. They are kept only in memory and only
// for a while, so that a broken connection or an accidental Escape loses nothing. A plain value;
// one thread.
#pragma once

#include "platform/SecureWipe.h"
#include "platform/concurrency/Clock.h"

#include <chrono>
#include <string>
#include <utility>

namespace orlune {

class UninsertedText {
  public:
    /// Long enough to notice the loss and recover the words; later nobody expects them here.
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
    /// Forgets the words once they are older than `keptFor`.
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
