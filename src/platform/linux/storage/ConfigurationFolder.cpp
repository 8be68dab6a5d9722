#include "platform/linux/storage/ConfigurationFolder.h"

#include "platform/Platform.h"

#include <pwd.h>
#include <string_view>
#include <unistd.h>

namespace orlune {

namespace {

/// Our folder below the one that the variable names, or else below `fallback` in the home folder.
std::filesystem::path folderBelow(const Environment& environment, std::string_view variable,
                                  const std::filesystem::path& fallback) {
    const auto absolute = [&environment](std::string_view name) -> std::filesystem::path {
        const auto entry = environment.find(name);
        const auto path = entry == environment.end() ? std::filesystem::path()
                                                     : std::filesystem::path(entry->second);
        return path.is_absolute() ? path : std::filesystem::path();
    };
    if (const auto folder = absolute(variable); !folder.empty()) {
        return folder / bundleIdentifier;
    }
    auto home = absolute("HOME");
    if (home.empty()) {
        const auto* user = ::getpwuid(::getuid());
        home = user && user->pw_dir ? user->pw_dir : "";
    }
    return home.is_absolute() ? home / fallback / bundleIdentifier : std::filesystem::path();
}

} // namespace

Environment processEnvironment() {
    Environment environment;
    for (char** entry = environ; entry && *entry; ++entry) {
        const std::string_view text = *entry;
        const auto separator = text.find('=');
        if (separator != std::string_view::npos) {
            environment.emplace(text.substr(0, separator), text.substr(separator + 1));
        }
    }
    return environment;
}

std::filesystem::path configurationFolder(const Environment& environment) {
    return folderBelow(environment, "XDG_CONFIG_HOME", ".config");
}

std::filesystem::path stateFolder(const Environment& environment) {
    return folderBelow(environment, "XDG_STATE_HOME", ".local/state");
}

} // namespace orlune
