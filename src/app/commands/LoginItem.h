// Whether the program starts at login: an entry in the user's autostart folder, as every desktop
// reads it. Main thread.
#pragma once

#include <filesystem>

namespace orlune {

class LoginItem {
  public:
    /// The folder of the user's configuration ($XDG_CONFIG_HOME).
    explicit LoginItem(const std::filesystem::path& configurationHome);

    /// False where the user's own desktop has switched the entry off.
    bool isEnabled() const;
    /// Throws std::system_error when the entry cannot be written or removed. `program`: the
    /// absolute path of what is to be started.
    void enable(const std::filesystem::path& program) const;
    void disable() const;

    const std::filesystem::path& file() const { return file_; }

  private:
    std::filesystem::path file_;
};

} // namespace orlune
