// How findings are shown. Pure functions.
#pragma once

#include "app/doctor/Finding.h"

namespace orlune {

/// No finding failed; warnings do not count.
bool allWork(const Findings& findings);

/// A table for people, with its last line saying how many failed.
std::string reportText(const Findings& findings);
/// One JSON object: "works", and the "checks" with "name", "state", "found" and "advice", which is
/// null where there is nothing to do.
std::string reportJson(const Findings& findings);

} // namespace orlune
