// The user defaults in one JSON file, "defaults.json" in the program's configuration folder (see
// DefaultsFormat.h for its shape). Main thread. Read once; every change rewrites the file. A file
// that cannot be read or written is reported in the log, and the values live on in memory; a
// damaged one is set aside as "defaults.json.damaged-<n>".
#pragma once

#include "platform/Log.h"
#include "platform/UserDefaults.h"
#include "platform/linux/storage/SettingsFile.h"

#include <boost/json/object.hpp>

#include <filesystem>
#include <map>

namespace orlune {

class FileUserDefaults final : public UserDefaults {
  public:
    static constexpr auto fileName = "defaults.json";

    /// Reads the file in `folder`, which need not exist. Never throws for what it finds there.
    FileUserDefaults(const std::filesystem::path& folder, Log& log);

    std::optional<Value> object(std::string_view key) const override;
    /// Keeps what another process wrote under other keys since the last read.
    void set(std::string_view key, Value value) override;
    void remove(std::string_view key) override;

  private:
    enum class FileState { read, absent, unreadable };

    FileState load();
    void save();

    SettingsFile file_;
    Logger logger_;
    boost::json::object members_;
    /// Changes that are not in the file yet; none stands for a removal.
    std::map<std::string, std::optional<boost::json::value>, std::less<>> unsaved_;
};

} // namespace orlune
