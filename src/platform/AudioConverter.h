// Turns samples of one format into another, keeping its resampling state from buffer to buffer.
// Used by one thread at a time; whoever made it owns it.
#pragma once

#include "platform/AudioFormat.h"

#include <functional>
#include <memory>

namespace orlune {

class AudioConverter {
  public:
    enum class InputStatus { haveData = 0, noDataNow = 1 };

    /// Asked for input until it has none: sets the status and returns the buffer, or nothing.
    using Input = std::function<const AudioPCMBuffer*(InputStatus&)>;

    virtual ~AudioConverter() = default;

    /// Converts what `input` supplies into `output` and sets its frame length, which may be 0.
    /// Output that finds no room is kept for the next call. False when the conversion failed.
    [[nodiscard]] virtual bool convert(AudioPCMBuffer& output, const Input& input) = 0;
};

/// Makes a converter between two formats, or none when there is no way from one to the other.
using AudioConverterFactory =
    std::function<std::unique_ptr<AudioConverter>(const AudioFormat& from, const AudioFormat& to)>;

} // namespace orlune
