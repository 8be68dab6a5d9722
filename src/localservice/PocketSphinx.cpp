#include "localservice/PocketSphinx.h"

#include <cassert>

// 5.1 includes sphinxbase and hides most of it.
#if __has_include(<sphinxbase/cmd_ln.h>)
#define ORLUNE_HAS_SPHINXBASE 1
#include <sphinxbase/cmd_ln.h>
#include <sphinxbase/cmn.h>
#include <sphinxbase/err.h>
#else
#define ORLUNE_HAS_SPHINXBASE 0
#include <pocketsphinx/err.h>

#include <locale>
#include <sstream>
#endif

namespace orlune::localservice::pocketsphinx {

Decoder makeDecoder(const std::vector<std::pair<std::string, std::string>>& settings) {
#if ORLUNE_HAS_SPHINXBASE
    using Configuration = std::unique_ptr<cmd_ln_t, void (*)(cmd_ln_t*)>;
    std::vector<std::string> words = {"orlune-local-service"};
    for (const auto& [name, value] : settings) {
        words.push_back("-" + name);
        words.push_back(value);
    }
    std::vector<char*> arguments;
    for (auto& word : words) {
        arguments.push_back(word.data());
    }
    const Configuration configuration(cmd_ln_parse_r(nullptr, ps_args(),
                                                     static_cast<int>(arguments.size()),
                                                     arguments.data(), TRUE),
                                      [](cmd_ln_t* parsed) { cmd_ln_free_r(parsed); });
#else
    using Configuration = std::unique_ptr<ps_config_t, void (*)(ps_config_t*)>;
    const Configuration configuration(ps_config_init(nullptr),
                                      [](ps_config_t* made) { ps_config_free(made); });
    for (const auto& [name, value] : settings) {
        if (ps_config_typeof(configuration.get(), name.c_str()) != 0) {
            ps_config_set_str(configuration.get(), name.c_str(), value.c_str());
        }
    }
#endif
    return {configuration ? ps_init(configuration.get()) : nullptr,
            [](ps_decoder_t* decoder) { ps_free(decoder); }};
}

void silence() {
    err_set_logfp(nullptr);
}

void setCepstralMean(ps_decoder_t& decoder, std::span<const float> mean) {
#if ORLUNE_HAS_SPHINXBASE
    assert(feat_cepsize(ps_get_feat(&decoder)) == static_cast<int>(mean.size()));
    cmn_live_set(ps_get_feat(&decoder)->cmn_struct, mean.data());
#else
    std::ostringstream list;
    list.imbue(std::locale::classic());
    for (const auto value : mean) {
        list << (list.tellp() > 0 ? "," : "") << value;
    }
    ps_set_cmn(&decoder, list.str().c_str());
#endif
}

} // namespace orlune::localservice::pocketsphinx
