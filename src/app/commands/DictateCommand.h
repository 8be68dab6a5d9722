// `orlune dictate`: sets up one dictation in the terminal and runs it.
#pragma once

#include "app/commands/CommandLine.h"

namespace orlune {

/// Creates the application object, so it must be called once, before anything else on the main
/// thread. Returns the exit code; throws std::exception with a text for the user.
int runDictateCommand(const DictateOptions& options, int& argumentCount, char** arguments);

} // namespace orlune
