// The commands for a running Orlune: `toggle`, `start`, … and `status`. They start nothing, need no
// display, and load no toolkit. Blocking, within the bound of `SessionBus`.
#pragma once

#include "app/commands/CommandLine.h"

#include <optional>

namespace orlune {

/// The exit code; what went wrong is on standard error.
int runRemoteCommand(const RemoteOptions& options);
/// The same; the status is on standard output.
int runStatusCommand(const StatusOptions& options);

/// Tells an instance that runs, if any, that the key in the keyring has changed.
void announceKeyChange();

/// Tells an instance that runs already that the program was launched once more. The exit code; none
/// when no instance runs, or there is no bus on which to find one.
std::optional<int> reopenRunningInstance();

} // namespace orlune
