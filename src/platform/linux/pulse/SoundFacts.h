// The sound server and the microphone as a person would name them, and how loud it is just now. The
// microphone is opened for half a second; nothing of what is heard is kept. Blocking, within a few
// seconds also when the server hangs.
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
    bool hasDelivered = false; ///< any sound at all, silence included
    double peak = 0;           ///< the largest sample, from 0 to 1

    static SoundFacts read();
};

} // namespace orlune
