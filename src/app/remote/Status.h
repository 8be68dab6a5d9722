// What a running Orlune reports about itself to the programs of the session. It never contains what
// was said: no transcript, no goal, no pasted text. Pure functions.
#pragma once

#include "dictation/AppState.h"

#include <optional>
#include <string>
#include <string_view>

namespace orlune {

/// One JSON object. `message` says why a dictation failed; it is null in any other phase.
std::string statusJson(const AppState& state);

/// The same as one readable line, from the JSON that came over the bus; none when `statusJson`
/// would not write it.
std::optional<std::string> statusLine(std::string_view json);

} // namespace orlune
