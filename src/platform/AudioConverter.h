// Converts samples from one format to another and keeps its resampling state between buffers. Used
// by one thread at a time; owned by its creator.
#pragma once

#include "platform/AudioFormat.h"

#include <functional>
#include <memory>

namespace orlune {

class AudioConverter {
  public:
    enum class InputStatus { haveData = 0, noDataNow = 1 };

    /// Called for input until it has none: sets the status and returns the buffer, or null.
    using Input = std::function<const AudioPCMBuffer*(InputStatus&)>;

    virtual ~AudioConverter() = default;

    /// Converts what `input` supplies into `output` and sets its frame length, which may be 0.
    /// Output that does not fit is kept for the next call. False when the conversion failed.
    [[nodiscard]] virtual bool convert(AudioPCMBuffer& output, const Input& input) = 0;
};

/// Makes a converter between two formats, or null when the conversion is not supported.
using AudioConverterFactory =
    std::function<std::unique_ptr<AudioConverter>(const AudioFormat& from, const AudioFormat& to)>;

} // namespace orlune
