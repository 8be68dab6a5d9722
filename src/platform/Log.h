// The system log. Safe from any thread; writing never fails. Neither secrets nor what the user said
// is ever logged.
#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace orlune {

class Log {
  public:
    enum class Level { info, error };

    virtual ~Log() = default;
    virtual void write(Level level, std::string_view category, std::string_view message) = 0;
};

/// One category of the log.
class Logger {
  public:
    Logger(Log& log, std::string category) : log_(log), category_(std::move(category)) {}

    void info(std::string_view message) const { log_.write(Log::Level::info, category_, message); }
    void error(std::string_view message) const {
        log_.write(Log::Level::error, category_, message);
    }

  private:
    Log& log_;
    std::string category_;
};

} // namespace orlune
