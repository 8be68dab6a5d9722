// A number in a property of an X window, by which window managers and programs exchange
// information. `display` belongs to an `XConnection`.
#pragma once

#include <optional>

struct _XDisplay;

namespace orlune {

/// The first 32-bit item of the property; `wantedType` may be any (0). None when there is no such
/// property or window.
std::optional<unsigned long> propertyItem(_XDisplay* display, unsigned long window,
                                          const char* name, unsigned long wantedType);

} // namespace orlune
