// One small file of settings: read whole, replaced whole. A symbolic link is followed and its
// target replaced, so that users may keep their settings elsewhere. Failures are return values with
// the system's text. Synchronous; one thread at a time.
#pragma once

#include "platform/linux/runtime/FileDescriptor.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace orlune {

class SettingsFile {
  public:
    struct Contents {
        enum class Kind { text, missing, tooLarge, unreadable };

        Kind kind = Kind::missing;
        std::string text;  ///< when `kind` is text
        std::string error; ///< for the user, when unreadable
    };

    explicit SettingsFile(std::filesystem::path path) : path_(std::move(path)) {}
    const std::filesystem::path& path() const { return path_; }

    /// Reads at most `limit` bytes. Anything but a regular file is unreadable.
    Contents read(std::size_t limit) const;

    /// Replaces the file atomically: a reader sees the old text or the new one, even after a power
    /// failure. The file gets mode 0600, missing folders 0700. Returns the error.
    std::optional<std::string> replace(std::string_view text) const;

    struct SetAside {
        std::filesystem::path path; ///< the file's new path; empty when it could not be moved
        std::string error;
    };
    /// Renames the file to "<name>.damaged-<n>", with the lowest free n from 1. Never overwrites.
    SetAside setAside() const;

    /// Keeps other processes of this program from replacing the file between a read and a replace.
    /// Locks the folder, so that no lock file remains. Best effort: after `longestLockWait` the
    /// holder is assumed to hang, and the work goes on without the lock.
    class Lock {
      public:
        explicit Lock(const SettingsFile& file);

      private:
        FileDescriptor folder_; // closing it releases the lock
    };

  private:
    /// The file itself, behind all links; the last target need not exist.
    std::filesystem::path target() const;

    std::filesystem::path path_;
};

} // namespace orlune
