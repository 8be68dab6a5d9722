// What a running Orlune tells about itself to the programs of the session. Never what was said: no
// transcript, no goal, nothing that was pasted. Pure functions.
#pragma once

#include "dictation/AppState.h"

#include <optional>
#include <string>
#include <string_view>

namespace orlune {

/// One JSON object. `message` is why a dictation failed, and null in any other phase.
std::string statusJson(const AppState& state);

/// The same as one line for a person, from the JSON that came over the bus; none when it is not
/// what `statusJson` makes.
std::optional<std::string> statusLine(std::string_view json);

} // namespace orlune
