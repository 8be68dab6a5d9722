#include "platform/linux/portals/TokenStore.h"

#include <utility>

namespace orlune {

namespace {

/// Tokens are identifiers of a few dozen bytes.
constexpr std::size_t largestTokenBytes = 4096;

} // namespace

TokenStore::TokenStore(const std::filesystem::path& folder, const std::string& name)
    : file_(folder.empty() ? std::filesystem::path() : folder / name) {
    if (!file_.path().empty()) {
        token_ = file_.read(largestTokenBytes).text;
    }
}

void TokenStore::set(std::string token) {
    if (token == token_) {
        return;
    }
    token_ = std::move(token);
    if (!file_.path().empty()) {
        // A token that cannot be written only means that the user is asked again.
        static_cast<void>(file_.replace(token_));
    }
}

} // namespace orlune
