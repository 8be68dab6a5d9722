// Standard output in place of the focused window: a paste writes the pasteboard's text and a line
// break. Always trusted. Main actor.
#pragma once

#include "platform/Accessibility.h"
#include "platform/KeyEventPosting.h"
#include "platform/Pasteboard.h"

#include <cstdio>
#include <string>

namespace orlune {

class StandardOutputInsertion final : public Pasteboard,
                                      public KeyEventPosting,
                                      public Accessibility {
  public:
    void clearContents() override { text_.clear(); }
    bool setString(const std::string& text) override {
        text_ = text;
        return true;
    }

    void prepare() override {}
    void rest() override {}
    std::optional<EventSource> createSource(EventSourceState state) override {
        return EventSource{state};
    }
    std::optional<KeyboardEvent> createKeyboardEvent(const EventSource& /*source*/,
                                                     std::uint16_t virtualKey,
                                                     bool isKeyDown) override {
        return KeyboardEvent{virtualKey, isKeyDown, {}};
    }
    bool post(EventTapLocation /*location*/, const KeyboardEvent& event) override {
        if (event.isKeyDown) {
            text_ += '\n';
            std::fwrite(text_.data(), 1, text_.size(), stdout);
            wroteAll_ = std::fflush(stdout) == 0 && wroteAll_;
        }
        return true;
    }

    bool isProcessTrusted() override { return true; }
    bool isProcessTrustedWithOptions(bool /*prompt*/) override { return true; }
    std::string reasonForDistrust() override { return {}; }

    /// False when writing to standard output failed (a full disk, a closed pipe).
    bool wroteAll() const { return wroteAll_; }

  private:
    std::string text_;
    bool wroteAll_ = true;
};

} // namespace orlune
