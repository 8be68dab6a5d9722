// `orlune autostart`: whether the program starts at login.
#pragma once

#include "app/commands/CommandLine.h"

namespace orlune {

/// Returns the exit code; for `status`, 0 means that it starts at login.
int runAutostartCommand(const AutostartOptions& options);

} // namespace orlune
