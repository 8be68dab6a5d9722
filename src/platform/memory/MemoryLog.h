// A log that is kept in memory. Safe from any thread.
#pragma once

#include "platform/Log.h"

#include <mutex>
#include <vector>

namespace orlune {

class MemoryLog final : public Log {
  public:
    struct Entry {
        Level level;
        std::string category;
        std::string message;

        bool operator==(const Entry&) const = default;
    };

    void write(Level level, std::string_view category, std::string_view message) override {
        const std::lock_guard lock(mutex_);
        entries_.push_back({level, std::string(category), std::string(message)});
    }

    /// What was written so far, in order.
    std::vector<Entry> entries() const {
        const std::lock_guard lock(mutex_);
        return entries_;
    }

  private:
    mutable std::mutex mutex_;
    std::vector<Entry> entries_;
};

} // namespace orlune
