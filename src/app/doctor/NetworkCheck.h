// Checks whether the speech service can be reached, from the result of one attempt. Pure.
#pragma once

#include "app/doctor/Finding.h"
#include "platform/network/EndpointProbe.h"

namespace orlune {

Findings checkNetwork(const EndpointProbe& probe);

} // namespace orlune
