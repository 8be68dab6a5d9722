// Formats findings. Pure functions.
#pragma once

#include "app/doctor/Finding.h"

namespace orlune {

/// True when no finding failed; warnings do not count.
bool allWork(const Findings& findings);

/// A readable table, whose last line says how many checks failed.
std::string reportText(const Findings& findings);
/// One JSON object: "works", and the "checks" with "name", "state", "found" and "advice", which is
/// null when there is nothing to do.
std::string reportJson(const Findings& findings);

} // namespace orlune
