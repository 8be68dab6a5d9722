// What of PocketSphinx differs between 5prealpha (Debian 12 and 13) and 5.1. Any thread.
#pragma once

#include <pocketsphinx.h>

#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace orlune::pocketsphinx {

using Decoder = std::unique_ptr<ps_decoder_t, void (*)(ps_decoder_t*)>;

/// Names without the dash, and values as text. Null when the library refuses them.
Decoder makeDecoder(const std::vector<std::pair<std::string, std::string>>& settings);

/// The library writes a thousand lines at each start otherwise.
void silence();

/// The mean of the cepstrum that the next utterance begins with.
void setCepstralMean(ps_decoder_t& decoder, std::span<const float> mean);

} // namespace orlune::pocketsphinx
