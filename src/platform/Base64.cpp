#include "platform/Base64.h"

#include <openssl/evp.h>

namespace orlune {

std::string base64(std::span<const std::byte> bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0'); // including the final NUL
    const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                                       reinterpret_cast<const unsigned char*>(bytes.data()),
                                       static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::optional<std::vector<std::byte>> bytesFromBase64(std::string_view text) {
    std::vector<std::byte> bytes(text.size() / 4 * 3);
    const int length = EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
                                       reinterpret_cast<const unsigned char*>(text.data()),
                                       static_cast<int>(text.size()));
    if (length < 0 || static_cast<std::size_t>(length) != bytes.size()) {
        return std::nullopt;
    }
    // The decoder counts the padding as bytes.
    const auto padding = text.ends_with("==") ? 2u : text.ends_with("=") ? 1u : 0u;
    bytes.resize(bytes.size() - padding);
    // The decoder also skips blanks and ignores stray bits.
    return base64(bytes) == text ? std::optional(std::move(bytes)) : std::nullopt;
}

} // namespace orlune
