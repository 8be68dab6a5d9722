// Accepts posted keys and stores them. Logs "down <key>" and "up <key>" with the virtual key code.
#pragma once

#include "platform/KeyEventPosting.h"
#include "platform/memory/MemoryEvents.h"

#include <optional>
#include <utility>
#include <vector>

namespace orlune {

class MemoryKeyEventPosting final : public KeyEventPosting {
  public:
    struct Posted {
        EventTapLocation location;
        KeyboardEvent event;
    };

    explicit MemoryKeyEventPosting(MemoryEvents log = makeMemoryEvents()) : log_(std::move(log)) {}

    void prepare() override { isPrepared = true; }
    void rest() override { isPrepared = false; }
    std::optional<EventSource> createSource(EventSourceState state) override;
    std::optional<KeyboardEvent> createKeyboardEvent(const EventSource& source,
                                                     std::uint16_t virtualKey,
                                                     bool isKeyDown) override;
    bool post(EventTapLocation location, const KeyboardEvent& event) override;

    const std::vector<Posted>& posted() const { return posted_; }
    const MemoryEvents& log() const { return log_; }

    /// True between `prepare` and `rest`.
    bool isPrepared = false;
    /// While true, the source cannot be created.
    bool refusesSource = false;
    bool refusesKeyDown = false;
    bool refusesKeyUp = false;
    /// While true, nothing is posted.
    bool refusesPosting = false;

  private:
    MemoryEvents log_;
    std::vector<Posted> posted_;
};

} // namespace orlune
