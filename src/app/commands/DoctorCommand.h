// `orlune doctor`: looks at everything a dictation needs and says what to do. Needs no display and
// no loop; takes a second or two, and longer only where something hangs, each within its bound.
#pragma once

#include "app/commands/CommandLine.h"

namespace orlune {

/// The exit code: whether all works.
int runDoctorCommand(const DoctorOptions& options);

} // namespace orlune
