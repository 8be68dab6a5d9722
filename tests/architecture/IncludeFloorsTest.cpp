// Reads every source file and fails on an include that src/floors.txt does not allow.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace orlune {
namespace {

namespace fs = std::filesystem;

const fs::path root = fs::path(ORLUNE_SOURCE_DIR) / "src";

/// The folders whose headers each folder may include.
using Floors = std::map<std::string, std::set<std::string>>;

Floors readFloors() {
    Floors floors;
    std::ifstream stream(root / "floors.txt");
    for (std::string line; std::getline(stream, line);) {
        const auto colon = line.find(':');
        if (line.empty() || line.starts_with('#') || colon == std::string::npos) {
            continue;
        }
        auto& below = floors[line.substr(0, colon)];
        std::istringstream names(line.substr(colon + 1));
        for (std::string name; names >> name;) {
            below.insert(name);
        }
    }
    return floors;
}

struct Include {
    std::string file;   // relative to src/
    std::string target; // as written
    bool isOurs;        // written in quotation marks

    std::string folder() const { return fs::path(file).parent_path().generic_string(); }
    std::string targetFolder() const { return fs::path(target).parent_path().generic_string(); }
};

std::vector<Include> allIncludes() {
    static const std::regex pattern(R"re(^\s*#\s*include\s*(["<])([^">]+)[">])re");
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

TEST(IncludeFloorsTest, everyIncludeIsAllowed) {
    const auto floors = readFloors();
    const auto includes = allIncludes();
    ASSERT_GT(includes.size(), 1000u) << "the sources were not found";
    for (const auto& include : includes) {
        if (!include.isOurs) {
            continue;
        }
        const auto floor = floors.find(include.folder());
        ASSERT_NE(floor, floors.end()) << "floors.txt does not name " << include.folder();
        const auto target = include.targetFolder();
        EXPECT_TRUE(fs::exists(root / include.target))
            << include.file << " includes " << include.target << ", which is not written from src/";
        EXPECT_TRUE(target == include.folder() || floor->second.contains(target))
            << include.file << " includes " << include.target;
    }
}

TEST(IncludeFloorsTest, everyAllowedIncludeIsUsed) {
    std::map<std::string, std::set<std::string>> used;
    for (const auto& include : allIncludes()) {
        if (include.isOurs) {
            used[include.folder()].insert(include.targetFolder());
        }
    }
    for (const auto& [folder, below] : readFloors()) {
        for (const auto& name : below) {
            EXPECT_TRUE(used[folder].contains(name))
                << folder << " may include " << name << " and does not need to";
        }
    }
}

/// The folders can be built in some order, so no folder includes itself through others.
TEST(IncludeFloorsTest, theFloorsFormNoCircle) {
    const auto floors = readFloors();
    std::set<std::string> built;
    while (true) {
        const auto before = built.size();
        for (const auto& [folder, below] : floors) {
            if (std::ranges::includes(built, below)) {
                built.insert(folder);
            }
        }
        if (built.size() == before) {
            break;
        }
    }
    for (const auto& [folder, below] : floors) {
        EXPECT_TRUE(built.contains(folder)) << folder << " stands on itself, or on nothing";
    }
}

TEST(IncludeFloorsTest, onlyTheTopFloorKnowsTheDesktop) {
    for (const auto& [folder, below] : readFloors()) {
        for (const auto& name : below) {
            if (startsWithAny(name, {"platform/linux/", "platform/memory", "platform/audio",
                                     "platform/network"})) {
                EXPECT_TRUE(startsWithAny(folder, {"platform/linux/", "app"}))
                    << folder << " may include " << name;
            }
        }
    }
}

TEST(IncludeFloorsTest, theEngineKnowsNoDesktopLibrary) {
    for (const auto& include : allIncludes()) {
        if (!startsWithAny(include.file, {"core/", "services/", "dictation/"}) || include.isOurs) {
            continue;
        }
        EXPECT_FALSE(startsWithAny(include.target, {"Q", "X11/", "xcb/", "pulse/", "speex/",
                                                    "libsecret/", "systemd/", "openssl/", "glib"}))
            << include.file << " includes <" << include.target << ">";
    }
}

} // namespace
} // namespace orlune
