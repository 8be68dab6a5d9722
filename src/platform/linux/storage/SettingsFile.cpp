#include "platform/linux/storage/SettingsFile.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>

namespace orlune {

namespace {

using namespace std::chrono_literals;

/// A replacement takes a few milliseconds, with fsync on a slow disk perhaps a hundred.
constexpr auto longestLockWait = 250ms;
constexpr auto lockInterval = 5ms;
/// The kernel's own limit.
constexpr int mostLinks = 40;
/// More damaged files than this indicate a fault that another copy does not explain.
constexpr int mostSetAside = 999;
/// Writing a settings file never takes longer.
constexpr auto longestWrite = 1min;
constexpr std::string_view temporarySuffix = "XXXXXX"; // as mkostemp requires

std::string errorText() {
    return std::generic_category().message(errno);
}

/// Creates the missing folders of `folder`, accessible only to the user.
bool createFolders(const std::filesystem::path& folder) {
    std::filesystem::path made;
    for (const auto& part : folder) {
        made /= part;
        if (::mkdir(made.c_str(), S_IRWXU) != 0 && errno != EEXIST && errno != EROFS
            && errno != EACCES) {
            return false;
        }
    }
    struct stat status = {};
    return ::stat(folder.c_str(), &status) == 0;
}

bool writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const auto written = ::write(descriptor, text.data(), text.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        text.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    return true;
}

void syncFolder(const std::filesystem::path& folder) {
    // The new name is only on the disk once its folder is synced. Some file systems refuse this;
    // the file is complete in any case.
    if (const FileDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        descriptor) {
        ::fsync(descriptor.get());
    }
}

/// Removes what a killed writer has left; a younger file may still be in use.
void removeRemains(const std::filesystem::path& folder, const std::string& prefix) {
    std::error_code error;
    const auto now = std::filesystem::file_time_type::clock::now();
    for (auto entry = std::filesystem::directory_iterator(folder, error);
         !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const auto name = entry->path().filename().string();
        std::error_code gone;
        if (name.size() == prefix.size() + temporarySuffix.size() && name.starts_with(prefix)
            && now - entry->last_write_time(gone) > longestWrite && !gone) {
            std::filesystem::remove(entry->path(), gone);
        }
    }
}

/// Renames without overwriting. Fails with EEXIST when `to` exists.
bool renameToFreeName(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return false;
    }
    // For a file system that does not support this in one step.
    struct stat status = {};
    if (::lstat(to.c_str(), &status) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::rename(from.c_str(), to.c_str()) == 0;
}

} // namespace

std::filesystem::path SettingsFile::target() const {
    auto path = path_;
    for (int links = 0; links < mostLinks; ++links) {
        std::error_code error;
        const auto next = std::filesystem::read_symlink(path, error);
        if (error) {
            break;
        }
        path = path.parent_path() / next; // an absolute target replaces the whole path
    }
    return path;
}

SettingsFile::Contents SettingsFile::read(std::size_t limit) const {
    using Kind = Contents::Kind;
    // Non-blocking, so that a pipe with that name does not block the start.
    const FileDescriptor file(::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file) {
        return errno == ENOENT ? Contents{} : Contents{Kind::unreadable, {}, errorText()};
    }
    struct stat status = {};
    if (::fstat(file.get(), &status) != 0) {
        return {Kind::unreadable, {}, errorText()};
    }
    if (!S_ISREG(status.st_mode)) {
        return {Kind::unreadable, {}, "Not a regular file"};
    }
    Contents contents{Kind::text, {}, {}};
    std::array<char, 16384> buffer;
    while (true) {
        const auto count = ::read(file.get(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return {Kind::unreadable, {}, errorText()};
        }
        if (count == 0) {
            return contents;
        }
        contents.text.append(buffer.data(), static_cast<std::size_t>(count));
        if (contents.text.size() > limit) {
            return {Kind::tooLarge, {}, {}};
        }
    }
}

std::optional<std::string> SettingsFile::replace(std::string_view text) const {
    const auto file = target();
    const auto folder = file.parent_path();
    if (!createFolders(folder)) {
        return errorText();
    }
    const auto prefix = "." + file.filename().string() + ".new-";
    auto temporary = (folder / (prefix + std::string(temporarySuffix))).string();
    FileDescriptor descriptor(::mkostemp(temporary.data(), O_CLOEXEC)); // with mode 0600
    if (!descriptor) {
        return errorText();
    }
    if (!writeAll(descriptor.get(), text) || ::fsync(descriptor.get()) != 0
        || ::rename(temporary.c_str(), file.c_str()) != 0) {
        auto error = errorText();
        ::unlink(temporary.c_str());
        return error;
    }
    removeRemains(folder, prefix);
    syncFolder(folder);
    return std::nullopt;
}

SettingsFile::SetAside SettingsFile::setAside() const {
    const auto file = target();
    for (int number = 1; number <= mostSetAside; ++number) {
        auto free = file;
        free += ".damaged-" + std::to_string(number);
        if (renameToFreeName(file, free)) {
            syncFolder(file.parent_path());
            return {free, {}};
        }
        if (errno != EEXIST) {
            return {{}, errorText()};
        }
    }
    return {{}, "There are too many damaged files already"};
}

SettingsFile::Lock::Lock(const SettingsFile& file)
    : folder_(::open(file.target().parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    const auto end = std::chrono::steady_clock::now() + longestLockWait;
    while (folder_ && ::flock(folder_.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK
           && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(lockInterval);
    }
}

} // namespace orlune
