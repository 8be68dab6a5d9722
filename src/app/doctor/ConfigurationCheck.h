// Checks the two configuration files, without changing them.
#pragma once

#include "app/doctor/Finding.h"
#include "platform/linux/storage/PlatformConfiguration.h"

#include <filesystem>

namespace orlune {

Findings checkConfiguration(const std::filesystem::path& folder,
                            const PlatformConfiguration& configuration);

} // namespace orlune
