// `orlune key`: the API key in the keyring. The key itself is never printed.
#pragma once

#include "app/commands/CommandLine.h"
#include "platform/linux/secrets/SecretServiceItems.h"

namespace orlune {

/// Reads a new key from `input`, a file descriptor. Messages go to standard error, the status to
/// standard output. Returns the exit code; `status` without a key is exit code 1.
int runKeyCommand(const KeyOptions& options, SecretItems& secrets, int input);

/// For commands that a user waits for: they wait for an open prompt without limit, and say so.
SecretServiceItems::Options patientKeyring();

} // namespace orlune
