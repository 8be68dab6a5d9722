// The sound server and the microphone by their readable names, and the current sound level. Opens
// the microphone for half a second and keeps nothing of the recording. Blocks for at most a few
// seconds, even when the server hangs.
#pragma once

#include <string>

namespace orlune {

struct SoundFacts {
    std::string error;  ///< why there is no server; empty when there is one
    std::string server; ///< its name and version
    std::string source; ///< the name of the microphone; empty when there is none
    bool isMuted = false;
    /// Why the microphone cannot be opened; empty when it can.
    std::string recordingError;
    bool hasDelivered = false; ///< any audio at all, including silence
    double peak = 0;           ///< the largest sample, from 0 to 1

    static SoundFacts read();
};

} // namespace orlune
