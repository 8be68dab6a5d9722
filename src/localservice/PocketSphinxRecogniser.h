#pragma once

// The recogniser of PocketSphinx with its US English model: creating it takes about 0.4 s and 100
// MB, running it a tenth of one core during speech. Owned by the pool that lends it out, used by
// one thread at a time; instances share nothing. A model that is missing or unreadable throws
// std::runtime_error with the file's name.

#include "localservice/Recogniser.h"

#include <filesystem>

typedef struct ps_decoder_s ps_decoder_t;

namespace orlune::localservice {

class PocketSphinxRecogniser final : public Recogniser {
  public:
    /// Where Debian's pocketsphinx-en-us installs the model.
    static constexpr const char* defaultModelDirectory = "/usr/share/pocketsphinx/model/en-us";

    explicit PocketSphinxRecogniser(const std::filesystem::path& modelDirectory);
    ~PocketSphinxRecogniser() override;

    void startStream() override;
    void startUtterance() override;
    void feed(std::span<const std::int16_t> samples) override;
    std::vector<RecognisedWord> partial() override;
    std::vector<RecognisedWord> endUtterance() override;

  private:
    std::vector<RecognisedWord> words() const;

    std::unique_ptr<ps_decoder_t, void (*)(ps_decoder_t*)> decoder_;
};

} // namespace orlune::localservice
