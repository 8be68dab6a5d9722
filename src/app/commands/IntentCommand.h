// `orlune intent`: reads a text from standard input and prints its intent check.
#pragma once

#include "app/commands/CommandLine.h"
#include "core/IntentCheck.h"

#include <iosfwd>
#include <string>

namespace orlune {

/// {"goal": …, "requirements": […], "potentialGap": … or null, "originalTranscript": …,
/// "formattedInstruction": …}
std::string json(const IntentCheck& check);

/// Returns the exit code.
int runIntentCommand(const IntentOptions& options, std::istream& input, std::ostream& output);

} // namespace orlune
