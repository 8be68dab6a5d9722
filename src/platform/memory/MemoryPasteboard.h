// A pasteboard without a desktop. Logs "clear" and "set <text>"; a refused text is not logged.
#pragma once

#include "platform/Pasteboard.h"
#include "platform/memory/MemoryEvents.h"

#include <optional>
#include <string>
#include <utility>

namespace orlune {

class MemoryPasteboard final : public Pasteboard {
  public:
    explicit MemoryPasteboard(MemoryEvents log = makeMemoryEvents()) : log_(std::move(log)) {}

    void clearContents() override;
    bool setString(const std::string& text) override;

    /// What a paste would insert now.
    const std::optional<std::string>& contents() const { return contents_; }
    const MemoryEvents& log() const { return log_; }

    /// While true, `setString` is refused, as on a desktop that gives the clipboard to no program.
    /// The text is not offered again.
    bool refuses = false;

  private:
    MemoryEvents log_;
    std::optional<std::string> contents_;
};

} // namespace orlune
