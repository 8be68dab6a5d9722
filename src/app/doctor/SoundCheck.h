// The microphone, judged from what the sound server tells and half a second of listening. Pure.
#pragma once

#include "app/doctor/Finding.h"
#include "platform/linux/pulse/SoundFacts.h"

namespace orlune {

Findings checkSound(const SoundFacts& facts);

} // namespace orlune
