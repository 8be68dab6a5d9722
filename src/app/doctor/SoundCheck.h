// Checks the microphone, from the sound server's answers and half a second of recording. Pure.
#pragma once

#include "app/doctor/Finding.h"
#include "platform/linux/pulse/SoundFacts.h"

namespace orlune {

Findings checkSound(const SoundFacts& facts);

} // namespace orlune
