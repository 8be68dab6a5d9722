// Where the program's own settings are stored. Pure: the environment is an argument.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <string>

namespace orlune {

using Environment = std::map<std::string, std::string, std::less<>>;

/// The environment of this process. Must be read before a second thread starts.
Environment processEnvironment();

/// `$XDG_CONFIG_HOME/app.orlune.Orlune`, else `~/.config/app.orlune.Orlune`. A relative path in
/// XDG_CONFIG_HOME counts as unset, as the XDG base directory rules say. Without HOME, the
/// home folder from the user database is used. Empty when there is none at all.
std::filesystem::path configurationFolder(const Environment& environment);
/// The same below `$XDG_STATE_HOME`, else `~/.local/state`, for state that the user does not edit.
std::filesystem::path stateFolder(const Environment& environment);

} // namespace orlune
