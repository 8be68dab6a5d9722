// What one check of `orlune doctor` found. A plain value: how it is found and how it is shown do
// not know each other.
#pragma once

#include <string>
#include <vector>

namespace orlune {

struct Finding {
    enum class State {
        ok,
        warning, ///< dictation works, with a limit that the user should know
        fail,    ///< dictation does not work as long as this holds
    };

    std::string name;
    State state = State::ok;
    std::string found;
    std::string advice{}; ///< what to do; empty when there is nothing to do

    bool operator==(const Finding&) const = default;
};

using Findings = std::vector<Finding>;

} // namespace orlune
