// Trust that a test grants and withdraws. Logs "prompt" for each prompt the user would see.
#pragma once

#include "platform/Accessibility.h"
#include "platform/memory/MemoryEvents.h"

#include <string>
#include <utility>

namespace orlune {

class MemoryAccessibility final : public Accessibility {
  public:
    explicit MemoryAccessibility(MemoryEvents log = makeMemoryEvents()) : log_(std::move(log)) {}

    bool isProcessTrusted() override { return reason.empty(); }
    bool isProcessTrustedWithOptions(bool prompt) override;
    std::string reasonForDistrust() override { return reason; }

    const MemoryEvents& log() const { return log_; }

    /// Empty while trusted.
    std::string reason;

  private:
    MemoryEvents log_;
};

} // namespace orlune
