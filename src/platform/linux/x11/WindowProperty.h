// A number that a window of an X display carries, as window managers and programs tell each other
// things. `display` belongs to an `XConnection`.
#pragma once

#include <optional>

struct _XDisplay;

namespace orlune {

/// The first 32-bit item of the property; `wantedType` may be any (0). None when there is no such
/// property or window.
std::optional<unsigned long> propertyItem(_XDisplay* display, unsigned long window,
                                          const char* name, unsigned long wantedType);

} // namespace orlune
