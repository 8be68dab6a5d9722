// The scripts in tests/localservice/scripts, each of which is a fault of the speech service.
#pragma once

#include "localservice/Script.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace orlune::test {

/// The script in the file with this name, without its ending, for example "late-tail-1.5s".
inline localservice::Script serviceScript(const std::string& name) {
    return localservice::Script::load(std::filesystem::path(ORLUNE_SERVICE_SCRIPTS)
                                      / (name + ".json"));
}

inline std::vector<std::string> serviceScriptNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(ORLUNE_SERVICE_SCRIPTS)) {
        names.push_back(entry.path().stem().string());
    }
    std::ranges::sort(names);
    return names;
}

} // namespace orlune::test
