// Checks the keyring and whether it holds the API key, which is never shown.
#pragma once

#include "app/doctor/Finding.h"
#include "platform/SecretItems.h"

namespace orlune {

/// Reads the key once, within the time limit of `secrets`.
Findings checkKeyring(SecretItems& secrets);

} // namespace orlune
