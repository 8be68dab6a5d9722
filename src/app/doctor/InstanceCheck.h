// Checks whether Orlune is running and can be reached.
#pragma once

#include "app/doctor/Finding.h"

namespace orlune {

class SessionBus;

/// `bus` is null without a session bus.
Findings checkInstance(SessionBus* bus);

} // namespace orlune
