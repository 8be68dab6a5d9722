#include "platform/linux/storage/FileUserDefaults.h"

#include "platform/linux/storage/DefaultsFormat.h"

#include <utility>

namespace orlune {

FileUserDefaults::FileUserDefaults(const std::filesystem::path& folder, Log& log)
    : file_(folder / fileName), logger_(log, "Settings") {
    load();
}

std::optional<UserDefaults::Value> FileUserDefaults::object(std::string_view key) const {
    const auto* member = members_.if_contains(key);
    return member ? defaultsValue(*member) : std::nullopt;
}

void FileUserDefaults::set(std::string_view key, Value value) {
    auto member = defaultsMember(value);
    if (!member || !defaultsMember(std::string(key))) {
        logger_.error("A value that the settings file cannot hold was not stored");
        return;
    }
    members_[key] = *member;
    unsaved_.insert_or_assign(std::string(key), std::move(member));
    save();
}

void FileUserDefaults::remove(std::string_view key) {
    members_.erase(key);
    unsaved_.insert_or_assign(std::string(key), std::nullopt);
    save();
}

/// Replaces the values in memory with those of the file, if it is valid.
FileUserDefaults::FileState FileUserDefaults::load() {
    using Kind = SettingsFile::Contents::Kind;
    const auto contents = file_.read(largestDefaultsFileBytes);
    switch (contents.kind) {
    case Kind::missing:
        return FileState::absent;
    case Kind::unreadable:
        logger_.error("Cannot read " + file_.path().string() + ": " + contents.error);
        return FileState::unreadable;
    case Kind::text:
        if (auto members = parseDefaults(contents.text)) {
            members_ = std::move(*members);
            return FileState::read;
        }
        break;
    case Kind::tooLarge:
        break;
    }
    const auto [path, error] = file_.setAside();
    if (path.empty()) {
        logger_.error(file_.path().string() + " is damaged and cannot be set aside: " + error);
        return FileState::unreadable;
    }
    logger_.error(file_.path().string() + " is damaged and was set aside as " + path.string());
    return FileState::absent;
}

void FileUserDefaults::save() {
    const SettingsFile::Lock lock(file_);
    if (load() == FileState::unreadable) {
        return; // never overwritten: it may contain more than we can read
    }
    for (const auto& [key, member] : unsaved_) {
        if (member) {
            members_[key] = *member;
        } else {
            members_.erase(key);
        }
    }
    if (const auto error = file_.replace(serializeDefaults(members_))) {
        logger_.error("Cannot write " + file_.path().string() + ": " + *error);
        return;
    }
    unsaved_.clear();
}

} // namespace orlune
