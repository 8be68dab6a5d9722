// Makes converters that pick samples instead of filtering them: enough for a program that nobody
// listens to. Whoever set up the conversions owns this; the converters must not outlive it. It
// refuses formats and fails conversions as it is told to.
#pragma once

#include "platform/AudioConverter.h"

namespace orlune {

class MemoryAudioConverter {
  public:
    AudioConverterFactory factory();

    /// No converter is made for any format.
    bool refusesFormats = false;
    /// Each conversion takes its input and fails.
    bool failsConversions = false;
    /// How many converters were made.
    int madeCount = 0;
    /// How often one was asked to convert.
    int conversionCount = 0;

  private:
    class Converter;
};

} // namespace orlune
