#include "platform/linux/runtime/JournalLog.h"

#include "platform/linux/runtime/FileDescriptor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <sys/stat.h>

namespace orlune {
namespace {

using testing::UnorderedElementsAre;

struct Pipe {
    Pipe() {
        std::array<int, 2> ends = {};
        if (::pipe(ends.data()) == 0) {
            reading = FileDescriptor(ends[0]);
            writing = FileDescriptor(ends[1]);
        }
    }
    std::string text() {
        std::string buffer(65536, '\0');
        const auto count = ::read(reading.get(), buffer.data(), buffer.size());
        buffer.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return buffer;
    }
    std::string stream() const {
        struct stat status = {};
        ::fstat(writing.get(), &status);
        return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
    }

    FileDescriptor reading;
    FileDescriptor writing;
};

TEST(JournalLog, WritesOneLineToStandardErrorWhereThereIsNoJournal) {
    Pipe pipe;
    JournalLog log("/nowhere/socket", pipe.writing.get());
    log.write(Log::Level::info, "Latency", "time_to_first_text_ms=412");
    log.write(Log::Level::error, "Settings", "two\nlines \033[31m");
    EXPECT_EQ(pipe.text(), "orlune[Latency]: time_to_first_text_ms=412\n"
                           "orlune[Settings]: two lines  [31m\n");
}

TEST(JournalLog, MarksThePriorityWhenStandardErrorIsTheJournal) {
    Pipe pipe;
    ::setenv("JOURNAL_STREAM", pipe.stream().c_str(), /*replace=*/1);
    JournalLog journal("/nowhere/socket", pipe.writing.get());
    Pipe terminal;
    JournalLog other("/nowhere/socket", terminal.writing.get());
    ::unsetenv("JOURNAL_STREAM");
    journal.write(Log::Level::error, "Latency", "a");
    other.write(Log::Level::error, "Latency", "a");
    EXPECT_EQ(pipe.text(), "<3>orlune[Latency]: a\n");
    EXPECT_EQ(terminal.text(), "orlune[Latency]: a\n")
        << "the variable is inherited by programs whose standard error was redirected";
}

TEST(JournalLog, CutsAnEndlessLineBetweenCharacters) {
    for (int offset = 0; offset < 3; ++offset) {
        std::string message(static_cast<std::size_t>(offset), 'a');
        for (int count = 0; count < PIPE_BUF; ++count) {
            message += "鍵";
        }
        const auto line = JournalLog::line(Log::Level::info, "Latency", message,
                                           /*withPriority=*/false);
        EXPECT_LE(line.size(), std::size_t{PIPE_BUF});
        EXPECT_TRUE(line.ends_with("鍵\n")) << offset;
    }
}

TEST(JournalLog, NamesSubsystemAndCategoryForTheJournal) {
    EXPECT_THAT(JournalLog::fields(Log::Level::info, "Latency", "two\nlines"),
                UnorderedElementsAre("MESSAGE=two\nlines", "PRIORITY=6",
                                     "SUBSYSTEM=app.orlune.Orlune", "CATEGORY=Latency",
                                     "SYSLOG_IDENTIFIER=orlune"));
}

} // namespace
} // namespace orlune
