// Makes converters that pick samples instead of filtering them, which is enough where nobody
// listens. Owned by the test; the converters must not outlive it. It can be set to refuse formats
// and to fail conversions.
#pragma once

#include "platform/AudioConverter.h"

namespace orlune {

class MemoryAudioConverter {
  public:
    AudioConverterFactory factory();

    /// No converter is made for any format.
    bool refusesFormats = false;
    /// Each conversion consumes its input and fails.
    bool failsConversions = false;
    /// How many converters were made.
    int madeCount = 0;

  private:
    class Converter;
};

} // namespace orlune
