// The system log: the journal if it runs, else standard error. Safe from any thread; writing never
// fails and never throws. Each message is written once, to one of the two: a standard error that
// ends in the journal does not receive it a second time.
#pragma once

#include "platform/Log.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace orlune {

class JournalLog final : public Log {
  public:
    /// The journal's socket. Checked at each message: sending reports success even without a
    /// listener, and the journal may start later than this program.
    static constexpr auto journalSocket = "/run/systemd/journal/socket";

    /// Arguments other than the defaults are for tests.
    explicit JournalLog(std::filesystem::path socket = journalSocket, int standardError = 2);

    void write(Level level, std::string_view category, std::string_view message) override;

    /// The entry's fields, each "NAME=value": SUBSYSTEM, CATEGORY, PRIORITY, MESSAGE and
    /// SYSLOG_IDENTIFIER.
    static std::vector<std::string> fields(Level level, std::string_view category,
                                           std::string_view message);
    /// "orlune[category]: message" with its newline. Control characters become blanks, so that the
    /// text is one line and controls no terminal; the line is cut so that it is written in one
    /// piece. With `withPriority` it starts with the priority mark, which the journal removes.
    static std::string line(Level level, std::string_view category, std::string_view message,
                            bool withPriority);
    /// Whether the descriptor is the stream named by `journalStream` ("device:inode", as the
    /// service manager sets JOURNAL_STREAM).
    static bool isJournalStream(int descriptor, std::string_view journalStream);

  private:
    std::filesystem::path socket_;
    int standardError_;
    bool standardErrorIsJournal_;
};

} // namespace orlune
