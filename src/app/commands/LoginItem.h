// Whether the program starts at login: an entry in the user's autostart folder, which every desktop
// reads. Main thread.
#pragma once

#include <filesystem>

namespace orlune {

class LoginItem {
  public:
    /// The folder of the user's configuration ($XDG_CONFIG_HOME).
    explicit LoginItem(const std::filesystem::path& configurationHome);

    /// False where the user's desktop has disabled the entry.
    bool isEnabled() const;
    /// Throws std::system_error when the entry cannot be written or removed. `program` is the
    /// absolute path of the program to start.
    void enable(const std::filesystem::path& program) const;
    void disable() const;

    const std::filesystem::path& file() const { return file_; }

  private:
    std::filesystem::path file_;
};

} // namespace orlune
