// The keyring and whether it holds the API key, which itself is shown nowhere.
#pragma once

#include "app/doctor/Finding.h"
#include "platform/SecretItems.h"

namespace orlune {

/// Reads the key once, within the bound of `secrets`.
Findings checkKeyring(SecretItems& secrets);

} // namespace orlune
