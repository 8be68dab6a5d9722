// The secrets of the program, each stored as one item in the desktop's own store. It caches
// nothing: every read and write goes to the store. Used on the main actor; each call has the
// store's own time limit. Reading never throws, writing throws KeychainStore::Error.
#pragma once

#include "platform/SecretItems.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace orlune {

enum class SecretKey { deepgramAPIKey };

/// The account under which the secret is stored.
std::string_view rawValue(SecretKey key);

class KeychainStore {
  public:
    /// The store refused to store a secret; `what()` is the store's text for the user.
    class Error : public std::runtime_error {
      public:
        explicit Error(const SecretStatus& status)
            : std::runtime_error(status.message), code_(status.code) {}
        SecretStatus::Code code() const { return code_; }

      private:
        SecretStatus::Code code_;
    };

    explicit KeychainStore(SecretItems& items) : items_(items) {}

    /// The stored text; none when there is no item, when the store cannot be read for any reason,
    /// and when the item is not UTF-8. An item without data is the empty text.
    std::optional<std::string> string(SecretKey key) const;

    /// Whether the secret is stored, without waiting and without a prompt; see SecretItems.
    void checkPresence(SecretKey key, SecretItems::PresenceHandler handler) const {
        items_.checkPresence(query(key), std::move(handler));
    }

    /// Replaces the secret; an empty value removes it. The old item is deleted first, so after a
    /// failed replacement nothing is stored. Throws Error when the store refuses the new value.
    void set(std::string_view value, SecretKey key) const;

    static SecretItemQuery query(SecretKey key);

  private:
    SecretItems& items_;
};

} // namespace orlune
