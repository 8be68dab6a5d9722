// The differences of PocketSphinx between 5prealpha (Debian 12 and 13) and 5.1. Any thread.
#pragma once

#include <pocketsphinx.h>

#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace orlune::localservice::pocketsphinx {

using Decoder = std::unique_ptr<ps_decoder_t, void (*)(ps_decoder_t*)>;

/// Names without the dash, and values as text. Null when the library rejects them.
Decoder makeDecoder(const std::vector<std::pair<std::string, std::string>>& settings);

/// Otherwise the library prints a thousand lines at each start.
void silence();

/// Sets the mean of the cepstrum with which the next utterance begins.
void setCepstralMean(ps_decoder_t& decoder, std::span<const float> mean);

} // namespace orlune::localservice::pocketsphinx
