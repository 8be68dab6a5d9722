// The secrets of the program, kept in the desktop's own store as one item each. It holds nothing
// itself: every read and write goes straight to the store. Used on the main actor; each call is as
// bounded as the store's own. Reading never fails visibly, writing throws KeychainStore::Error.
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
    /// The store refused to keep a secret; `what()` is the store's text for a person.
    class Error : public std::runtime_error {
      public:
        explicit Error(const SecretStatus& status)
            : std::runtime_error(status.message), code_(status.code) {}
        SecretStatus::Code code() const { return code_; }

      private:
        SecretStatus::Code code_;
    };

    explicit KeychainStore(SecretItems& items) : items_(items) {}

    /// The stored text; none when there is no item, when the store cannot be read for whatever
    /// reason, and when the item is not UTF-8. An item without data is the empty text.
    std::optional<std::string> string(SecretKey key) const;

    /// Whether the secret is stored, without waiting or asking anybody; see SecretItems.
    void checkPresence(SecretKey key, SecretItems::PresenceHandler handler) const {
        items_.checkPresence(query(key), std::move(handler));
    }

    /// Replaces the secret; an empty value removes it. What was there is deleted first, so that
    /// after a failed replacement nothing is stored. Throws Error when the new value is refused.
    void set(std::string_view value, SecretKey key) const;

    /// The item that holds a secret.
    static SecretItemQuery query(SecretKey key);

  private:
    SecretItems& items_;
};

} // namespace orlune
