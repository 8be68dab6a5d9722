// The location would always be this file, not the place that a message came from.
#define SD_JOURNAL_SUPPRESS_LOCATION

#include "platform/linux/runtime/JournalLog.h"

#include "platform/Platform.h"

#include <systemd/sd-journal.h>

#include <climits>
#include <cstdlib>
#include <sys/stat.h>
#include <sys/uio.h>
#include <syslog.h>
#include <unistd.h>

namespace orlune {

namespace {

constexpr auto identifier = "orlune";

int priority(Log::Level level) {
    return level == Log::Level::error ? LOG_ERR : LOG_INFO;
}

bool sendToJournal(std::vector<std::string> fields) {
    std::vector<iovec> parts;
    for (auto& field : fields) {
        parts.push_back({field.data(), field.size()});
    }
    return sd_journal_sendv(parts.data(), static_cast<int>(parts.size())) >= 0;
}

} // namespace

JournalLog::JournalLog(std::filesystem::path socket, int standardError)
    : socket_(std::move(socket)), standardError_(standardError) {
    const char* stream = std::getenv("JOURNAL_STREAM");
    standardErrorIsJournal_ = stream && isJournalStream(standardError, stream);
}

void JournalLog::write(Level level, std::string_view category, std::string_view message) {
    if (::access(socket_.c_str(), W_OK) == 0 && sendToJournal(fields(level, category, message))) {
        return;
    }
    const auto text = line(level, category, message, standardErrorIsJournal_);
    // When even this fails, there is no other place to write to.
    [[maybe_unused]] const auto written = ::write(standardError_, text.data(), text.size());
}

std::vector<std::string> JournalLog::fields(Level level, std::string_view category,
                                            std::string_view message) {
    return {
        "MESSAGE=" + std::string(message),
        "PRIORITY=" + std::to_string(priority(level)),
        "SUBSYSTEM=" + std::string(bundleIdentifier),
        "CATEGORY=" + std::string(category),
        "SYSLOG_IDENTIFIER=" + std::string(identifier),
    };
}

std::string JournalLog::line(Level level, std::string_view category, std::string_view message,
                             bool withPriority) {
    std::string text = withPriority ? "<" + std::to_string(priority(level)) + ">" : "";
    text += std::string(identifier) + "[" + std::string(category) + "]: " + std::string(message);
    for (auto& character : text) {
        if (static_cast<unsigned char>(character) < 0x20 || character == 0x7f) {
            character = ' ';
        }
    }
    // A pipe takes up to this many bytes in one piece, whatever other writers do.
    constexpr std::size_t longestLineBytes = PIPE_BUF - 1;
    if (text.size() > longestLineBytes) {
        auto end = longestLineBytes;
        while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0) == 0x80) {
            --end; // not within a character
        }
        text.resize(end);
    }
    return text + "\n";
}

bool JournalLog::isJournalStream(int descriptor, std::string_view journalStream) {
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0
           && journalStream == std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

} // namespace orlune
