#include "platform/linux/storage/FileUserDefaults.h"

#include "platform/linux/storage/ConfigurationFolder.h"
#include "platform/linux/storage/DefaultsFormat.h"
#include "platform/memory/MemoryLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <limits>
#include <random>
#include <set>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orlune {
namespace {

using test::textOf;
using testing::HasSubstr;
using testing::UnorderedElementsAre;
namespace fs = std::filesystem;

class FileUserDefaultsTest : public testing::Test {
  protected:
    FileUserDefaults open() { return FileUserDefaults(folder, log); }

    std::string errors() const {
        std::string text;
        for (const auto& entry : log.entries()) {
            text += entry.message + "\n";
        }
        return text;
    }
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(folder)) {
            found.push_back(entry.path().filename());
        }
        return found;
    }
    static unsigned mode(const fs::path& path) {
        struct stat status = {};
        return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 0777u : 0;
    }

    test::TemporaryFolder temporary;
    fs::path folder = temporary.path() / "config" / "app.orlune.Orlune";
    fs::path file = folder / "defaults.json";
    MemoryLog log;
};

TEST_F(FileUserDefaultsTest, EveryTypeComesBackAfterARestartAndAsNoOther) {
    const UserDefaults::Data bytes = {std::byte{0}, std::byte{0xff}, std::byte{'{'}};
    const std::vector<std::pair<std::string, UserDefaults::Value>> rows = {
        {"true", true},
        {"integer", std::int64_t{-9007199254740993}},
        {"real without fraction", 1.0},
        {"real", 0.1},
        {"empty text", std::string()},
        {"text", std::string("fn \"⌘\"\n\0", 9)},
        {"text that looks like data", std::string("AP97")},
        {"data", bytes},
        {"empty data", UserDefaults::Data()},
    };
    {
        auto defaults = open();
        for (const auto& [key, value] : rows) {
            defaults.set(key, value);
        }
    }
    const auto defaults = open();
    for (const auto& [key, value] : rows) {
        EXPECT_EQ(defaults.object(key), value) << key;
    }
    EXPECT_EQ(defaults.string("data"), std::nullopt);
    EXPECT_EQ(defaults.data("text that looks like data"), std::nullopt);
    EXPECT_EQ(defaults.boolean("integer"), std::nullopt);
    EXPECT_EQ(mode(file), 0600u);
    EXPECT_EQ(mode(folder), 0700u);
    EXPECT_THAT(names(), UnorderedElementsAre("defaults.json")) << "no temporary file stays";
    EXPECT_EQ(errors(), "");
}

TEST_F(FileUserDefaultsTest, KeepsWhatOthersWrote) {
    fs::create_directories(folder);
    test::write(file, R"({"later": {"version": [1, null]}, "huge": 18446744073709551615})");
    auto first = open();
    auto second = open();
    EXPECT_EQ(first.object("later"), std::nullopt) << "an unknown shape reads as absent";
    first.set("mode", std::string("hold"));
    second.set("enabled", true);
    second.remove("huge");
    const auto members = parseDefaults(textOf(file));
    ASSERT_TRUE(members);
    const boost::json::object expected = {
        {"later", {{"version", {1, nullptr}}}}, {"mode", "hold"}, {"enabled", true}};
    EXPECT_EQ(*members, expected);
}

TEST_F(FileUserDefaultsTest, NumbersBeyondARealNumberDoNotDamageTheFile) {
    fs::create_directories(folder);
    test::write(file, R"({"a": 1e400, "later": [{"b": -1e400}, 0e400], "mode": "hold"})");
    open().set("enabled", true);
    EXPECT_EQ(open().string("mode"), "hold");
    EXPECT_EQ(open().object("a"), UserDefaults::Value(std::numeric_limits<double>::max()));
    EXPECT_EQ(names().size(), 1U) << "nothing was set aside";
}

TEST_F(FileUserDefaultsTest, SetsADamagedFileAsideAndNeverOverwritesAnEarlierOne) {
    const std::vector<std::string> rows = {
        R"({"mode": "ho)",
        "",
        "[]",
        "\xff\xfe",
        R"({"a": "\ud800"})",
        std::string(largestDefaultsFileBytes + 1, ' '),
    };
    fs::create_directories(folder);
    for (std::size_t index = 0; index < rows.size(); ++index) {
        test::write(file, rows[index]);
        auto defaults = open();
        EXPECT_EQ(defaults.object("mode"), std::nullopt);
        EXPECT_FALSE(fs::exists(file));
        const auto aside = file.string() + ".damaged-" + std::to_string(index + 1);
        EXPECT_EQ(textOf(aside), rows[index]) << index;
        EXPECT_THAT(errors(), HasSubstr(aside));
        defaults.set("mode", std::string("hold"));
        EXPECT_EQ(open().string("mode"), "hold");
    }
}

TEST_F(FileUserDefaultsTest, AFileThatIsDamagedWhileWeRunLosesNothingWeKnow) {
    auto defaults = open();
    defaults.set("mode", std::string("hold"));
    test::write(file, "{");
    defaults.set("enabled", true);
    EXPECT_EQ(open().string("mode"), "hold");
    EXPECT_EQ(open().boolean("enabled"), true);
}

TEST_F(FileUserDefaultsTest, WritesThroughSymbolicLinks) {
    const auto repository = temporary.path() / "dotfiles";
    fs::create_directories(repository);
    fs::create_directories(folder);
    fs::create_symlink("../../dotfiles/link.json", file);
    fs::create_symlink(repository / "orlune.json", repository / "link.json");
    open().set("enabled", true);
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_TRUE(fs::is_symlink(repository / "link.json"));
    EXPECT_TRUE(fs::is_regular_file(repository / "orlune.json"));
    EXPECT_EQ(open().boolean("enabled"), true);
}

TEST_F(FileUserDefaultsTest, ValuesStayInMemoryWhenTheyCannotBeWrittenAndFollowLater) {
    test::write(temporary.path() / "config", "a file where the folder should be");
    auto defaults = open();
    defaults.set("enabled", true);
    defaults.set("mode", std::string("hold"));
    defaults.remove("mode");
    EXPECT_EQ(defaults.boolean("enabled"), true);
    EXPECT_THAT(errors(), HasSubstr("Not a directory"));
    fs::remove(temporary.path() / "config");
    defaults.set("other", std::int64_t{1});
    EXPECT_EQ(open().boolean("enabled"), true) << "what could not be written is written now";
    EXPECT_EQ(open().object("mode"), std::nullopt);
}

TEST_F(FileUserDefaultsTest, AWriterThatIsKilledLeavesAWholeFile) {
    open().set("kept", true);
    std::minstd_rand random(1);
    std::set<std::string> seen;
    for (int round = 0; round < 200; ++round) {
        const pid_t writer = ::fork();
        if (writer == 0) {
            auto defaults = open();
            for (char letter = 'a';; letter = letter == 'z' ? 'a' : static_cast<char>(letter + 1)) {
                defaults.set("mode", std::string(20'000, letter));
            }
        }
        // Makes the moment random; the test does not wait for anything.
        ::usleep(static_cast<useconds_t>(random() % 3000));
        ::kill(writer, SIGKILL);
        ::waitpid(writer, nullptr, 0);
        const auto members = parseDefaults(textOf(file));
        ASSERT_TRUE(members) << "after " << round << " kills";
        ASSERT_EQ(open().boolean("kept"), true);
        const auto mode = open().string("mode").value_or("");
        ASSERT_EQ(mode, std::string(mode.size(), mode.empty() ? ' ' : mode.front()));
        seen.insert(mode);
    }
    EXPECT_GT(seen.size(), 1U) << "no write was under way";

    test::write(folder / ".defaults.json.backup", "not of ours");
    for (const auto& name : names()) {
        fs::last_write_time(folder / name,
                            fs::file_time_type::clock::now() - std::chrono::hours(1));
    }
    open().set("enabled", true);
    EXPECT_THAT(names(), UnorderedElementsAre("defaults.json", ".defaults.json.backup"))
        << "what the killed writers left goes with the next write";
}

TEST_F(FileUserDefaultsTest, WhatIsNotAFileIsLeftAlone) {
    fs::create_directories(file);
    auto defaults = open();
    defaults.set("enabled", true);
    EXPECT_TRUE(fs::is_directory(file));
    EXPECT_EQ(defaults.boolean("enabled"), true);
    fs::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    EXPECT_EQ(open().boolean("enabled"), std::nullopt) << "a pipe must not hold up the start";
}

TEST_F(FileUserDefaultsTest, AValueThatWouldDamageTheFileIsRefused) {
    auto defaults = open();
    defaults.set("mode", std::string("hold"));
    for (const UserDefaults::Value& value :
         {UserDefaults::Value("\xff"), UserDefaults::Value(std::nan("")),
          UserDefaults::Value(HUGE_VAL)}) {
        defaults.set("mode", value);
    }
    defaults.set("\xc3", true);
    EXPECT_EQ(open().string("mode"), "hold");
}

TEST(ConfigurationFolder, FollowsTheBaseDirectoryRules) {
    const fs::path standard = "/home/someone/.config/app.orlune.Orlune";
    EXPECT_EQ(configurationFolder({{"HOME", "/home/someone"}}), standard);
    EXPECT_EQ(configurationFolder({{"HOME", "/home/someone"}, {"XDG_CONFIG_HOME", "relative"}}),
              standard);
    EXPECT_EQ(configurationFolder({{"HOME", "/home/someone"}, {"XDG_CONFIG_HOME", "/etc/x"}}),
              "/etc/x/app.orlune.Orlune");
}

} // namespace
} // namespace orlune
