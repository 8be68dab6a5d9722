// `orlune doctor`: checks everything a dictation needs and says what to do. Needs no display and no
// loop. Takes a second or two, and longer only where something hangs, up to the time limit of each
// check.
#pragma once

#include "app/commands/CommandLine.h"

namespace orlune {

/// The exit code, which says whether everything works.
int runDoctorCommand(const DoctorOptions& options);

} // namespace orlune
