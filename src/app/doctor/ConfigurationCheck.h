// The two configuration files. Reads them and changes nothing.
#pragma once

#include "app/doctor/Finding.h"
#include "platform/linux/storage/PlatformConfiguration.h"

#include <filesystem>

namespace orlune {

Findings checkConfiguration(const std::filesystem::path& folder,
                            const PlatformConfiguration& configuration);

} // namespace orlune
