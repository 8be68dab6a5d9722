// `orlune key`: the API key in the keyring. The key itself is never printed.
#pragma once

#include "app/CommandLine.h"
#include "platform/SecretItems.h"

namespace orlune {

/// Reads a new key from `input`, a file descriptor. Messages go to standard error, the status to
/// standard output. Returns the exit code; `status` without a key is exit code 1.
int runKeyCommand(const KeyOptions& options, SecretItems& secrets, int input);

} // namespace orlune
