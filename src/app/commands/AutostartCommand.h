// `orlune autostart`: whether the program starts at login.
#pragma once

#include "app/commands/CommandLine.h"

namespace orlune {

/// Returns the exit code; `status` answers with it too: 0 when it starts at login.
int runAutostartCommand(const AutostartOptions& options);

} // namespace orlune
