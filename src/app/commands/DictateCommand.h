// `orlune dictate`: puts one dictation in the terminal together and runs it.
#pragma once

#include "app/commands/CommandLine.h"

namespace orlune {

/// Creates the application object, so it is called once, first thing on the main thread. Returns
/// the exit code; what went wrong is on standard error.
int runDictateCommand(const DictateOptions& options, int& argumentCount, char** arguments);

} // namespace orlune
