// Where the program's own settings lie on this machine. Pure: the environment is an argument.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <string>

namespace orlune {

using Environment = std::map<std::string, std::string, std::less<>>;

/// The environment of this process. To be read before a second thread starts.
Environment processEnvironment();

/// `$XDG_CONFIG_HOME/app.orlune.Orlune`, else `~/.config/app.orlune.Orlune`. A relative path in
/// XDG_CONFIG_HOME counts as unset, as the base directory rules say. Without HOME the home folder
/// of the user database is taken. Empty when there is none at all.
std::filesystem::path configurationFolder(const Environment& environment);
/// The same below `$XDG_STATE_HOME`, else `~/.local/state`: for what the program remembers by
/// itself.
std::filesystem::path stateFolder(const Environment& environment);

} // namespace orlune
