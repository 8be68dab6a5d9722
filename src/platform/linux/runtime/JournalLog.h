// The system log: the journal where one runs, else standard error. Safe from any thread; writing
// never fails and never throws. Each message is written once, to one of the two: never to the
// journal and to a standard error that ends in the journal as well.
#pragma once

#include "platform/Log.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace orlune {

class JournalLog final : public Log {
  public:
    /// Where the journal listens. Looked for at each message: sending to it reports success even
    /// when nobody listens, and the journal may come later than we do.
    static constexpr auto journalSocket = "/run/systemd/journal/socket";

    /// The other arguments than the default ones are for tests.
    explicit JournalLog(std::filesystem::path socket = journalSocket, int standardError = 2);

    void write(Level level, std::string_view category, std::string_view message) override;

    /// The entry's fields, each "NAME=value": SUBSYSTEM, CATEGORY, PRIORITY, MESSAGE and
    /// SYSLOG_IDENTIFIER.
    static std::vector<std::string> fields(Level level, std::string_view category,
                                           std::string_view message);
    /// "orlune[category]: message" with its newline. Control characters become blanks, so that it
    /// is one line and steers no terminal; the line is cut so that it is written in one piece. With
    /// `withPriority` it opens with the mark that the journal takes off again.
    static std::string line(Level level, std::string_view category, std::string_view message,
                            bool withPriority);
    /// Whether the descriptor is the stream that `journalStream` ("device:inode", as the service
    /// manager puts it into JOURNAL_STREAM) names.
    static bool isJournalStream(int descriptor, std::string_view journalStream);

  private:
    std::filesystem::path socket_;
    int standardError_;
    bool standardErrorIsJournal_;
};

} // namespace orlune
