// Reads every source file and fails on an include that runs against the floors of the house, as
// docs/architecture.md draws them.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

namespace orlune {
namespace {

namespace fs = std::filesystem;

struct Floor {
    std::string_view pathPrefix;
    int level;
};

/// The most specific prefix comes first. Two files live in a room that is older than their floor:
/// the state stands on the services, and the key monitor stands on the state.
constexpr std::array floors{
    Floor{"platform/linux/", 1}, Floor{"platform/memory/", 1},
    Floor{"platform/", 0},       Floor{"core/AppState", 3},
    Floor{"core/", 1},           Floor{"services/FnPushToTalkMonitor", 4},
    Floor{"services/", 2},       Floor{"ui/", 5},
    Floor{"visuals/", 6},        Floor{"overlay/", 7},
    Floor{"settings/", 7},       Floor{"mainwindow/", 8},
    Floor{"localservice/", 8},   Floor{"app/", 9},
};

int levelOf(std::string_view path) {
    const auto* floor = std::ranges::find_if(
        floors, [&](const Floor& candidate) { return path.starts_with(candidate.pathPrefix); });
    return floor == floors.end() ? -1 : floor->level;
}

struct Include {
    std::string file;   // relative to src/
    std::string target; // as written
    bool isOurs;        // written in quotation marks
};

std::vector<Include> allIncludes() {
    static const std::regex pattern(R"re(^\s*#\s*include\s*(["<])([^">]+)[">])re");
    const fs::path root = fs::path(ORLUNE_SOURCE_DIR) / "src";
    std::vector<Include> includes;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (entry.path().extension() != ".h" && entry.path().extension() != ".cpp") {
            continue;
        }
        std::ifstream stream(entry.path());
        for (std::string line; std::getline(stream, line);) {
            std::smatch match;
            if (std::regex_search(line, match, pattern)) {
                includes.push_back({fs::relative(entry.path(), root).generic_string(), match[2],
                                    match[1] == "\""});
            }
        }
    }
    return includes;
}

bool startsWithAny(std::string_view text, std::initializer_list<std::string_view> prefixes) {
    return std::ranges::any_of(prefixes,
                               [&](std::string_view prefix) { return text.starts_with(prefix); });
}

TEST(IncludeFloorsTest, noIncludePointsUpwards) {
    const auto includes = allIncludes();
    ASSERT_GT(includes.size(), 100u) << "the sources were not found";
    for (const auto& include : includes) {
        if (!include.isOurs) {
            continue;
        }
        const int from = levelOf(include.file);
        const int to = levelOf(include.target);
        EXPECT_GE(from, 0) << include.file << " stands in a folder without a floor";
        EXPECT_GE(to, 0) << include.file << " includes " << include.target
                         << ", which is not written from src/";
        EXPECT_GE(from, to) << include.file << " includes " << include.target;
    }
}

TEST(IncludeFloorsTest, onlyTheTopKnowsWhichDesktopItStandsOn) {
    for (const auto& include : allIncludes()) {
        const bool isBackend =
            startsWithAny(include.target, {"platform/linux/", "platform/memory/"});
        if (isBackend) {
            EXPECT_TRUE(startsWithAny(
                include.file, {"platform/linux/", "platform/memory/", "app/", "localservice/"}))
                << include.file << " includes " << include.target;
        }
    }
}

TEST(IncludeFloorsTest, coreAndServicesKnowNoDesktopLibrary) {
    for (const auto& include : allIncludes()) {
        if (!startsWithAny(include.file, {"core/", "services/"}) || include.isOurs) {
            continue;
        }
        EXPECT_FALSE(startsWithAny(include.target, {"Q", "X11/", "xcb/", "pulse/", "speex/",
                                                    "libsecret/", "systemd/", "openssl/", "glib"}))
            << include.file << " includes <" << include.target << ">";
    }
}

} // namespace
} // namespace orlune
