// The commands for a running Orlune: `toggle`, `start`, … and `status`. They start nothing, need no
// display, and load no toolkit. Blocking, within the time limit of `SessionBus`.
#pragma once

#include "app/commands/CommandLine.h"

#include <optional>

namespace orlune {

/// Returns the exit code; errors are on standard error.
int runRemoteCommand(const RemoteOptions& options);
/// The same; the status is on standard output.
int runStatusCommand(const StatusOptions& options);

/// Tells a running instance that the key in the keyring has changed.
void announceKeyChange();

/// Tells a running instance that the program was launched again. Returns the exit code; none when
/// no instance runs, or when there is no session bus.
std::optional<int> reopenRunningInstance();

} // namespace orlune
