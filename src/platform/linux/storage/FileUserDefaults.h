// The user defaults in one JSON file, "defaults.json" in the program's configuration folder (see
// DefaultsFormat.h for its format). Main thread. Read once; every change rewrites the file. A file
// that cannot be read or written is logged, and the values stay in memory; a damaged one is renamed
// to "defaults.json.damaged-<n>".
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

    /// Reads the file in `folder`, which need not exist. Never throws, whatever the contents.
    FileUserDefaults(const std::filesystem::path& folder, Log& log);

    std::optional<Value> object(std::string_view key) const override;
    /// Keeps values that another process wrote under other keys since the last read.
    void set(std::string_view key, Value value) override;
    void remove(std::string_view key) override;

  private:
    enum class FileState { read, absent, unreadable };

    FileState load();
    void save();

    SettingsFile file_;
    Logger logger_;
    boost::json::object members_;
    /// Changes that are not in the file yet; an empty value stands for a removal.
    std::map<std::string, std::optional<boost::json::value>, std::less<>> unsaved_;
};

} // namespace orlune
