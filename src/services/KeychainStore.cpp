#include "services/KeychainStore.h"

#include "platform/Platform.h"

#include <unicode/ustring.h>

#include <cstdint>

namespace orlune {

namespace {

bool isUTF8(std::string_view text) {
    // The conversion only computes the length of the result: nothing is copied.
    std::int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8(nullptr, 0, &length, text.data(), static_cast<std::int32_t>(text.size()), &error);
    return U_SUCCESS(error) || error == U_BUFFER_OVERFLOW_ERROR;
}

} // namespace

std::string_view rawValue(SecretKey key) {
    switch (key) {
    case SecretKey::deepgramAPIKey:
        return "deepgramAPIKey";
    }
    return {};
}

SecretItemQuery KeychainStore::query(SecretKey key) {
    return {bundleIdentifier, std::string(rawValue(key))};
}

std::optional<std::string> KeychainStore::string(SecretKey key) const {
    auto match = items_.copyMatching(query(key));
    if (!match.status.isSuccess() || !match.data || !isUTF8(*match.data)) {
        return std::nullopt;
    }
    return std::move(match.data);
}

void KeychainStore::set(std::string_view value, SecretKey key) const {
    const auto item = query(key);
    // There may be nothing to delete; an old item that cannot be deleted makes the add below fail.
    items_.remove(item);
    if (value.empty()) {
        return;
    }
    const auto status =
        items_.add(item, value, SecretAccessibility::afterFirstUnlockThisDeviceOnly);
    if (!status.isSuccess()) {
        throw Error(status);
    }
}

} // namespace orlune
