// The result of one check of `orlune doctor`. A plain value, independent of how it is found and
// displayed.
#pragma once

#include <string>
#include <vector>

namespace orlune {

struct Finding {
    enum class State {
        ok,
        warning, ///< dictation works, with a limitation that the user should know
        fail,    ///< dictation does not work while this lasts
    };

    std::string name;
    State state = State::ok;
    std::string found;
    std::string advice{}; ///< what to do; empty when there is nothing to do

    bool operator==(const Finding&) const = default;
};

using Findings = std::vector<Finding>;

} // namespace orlune
