// Generic-password items in the desktop's secret store. Calls are synchronous and have a time
// limit: a store that is locked, missing or asking the user for a password answers within the limit
// with a status, so the program never hangs. Used on the main actor.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace orlune {

/// Identifies an item: the application's bundle identifier and the name of the secret.
struct SecretItemQuery {
    std::string service;
    std::string account;
};

/// When an item can be read. The only value means: once the user has unlocked the store after
/// login, and only on this machine; the item is never synchronised.
enum class SecretAccessibility { afterFirstUnlockThisDeviceOnly };

struct SecretStatus {
    enum class Code {
        success,
        itemNotFound,
        duplicateItem,
        notAvailable,          ///< no session bus or no provider of secrets
        noDefaultStore,        ///< a provider without a default collection
        interactionNotAllowed, ///< locked, and nobody can unlock it
        timedOut,              ///< no answer within the limit, perhaps because of an unlock prompt
        userCanceled,          ///< the unlock prompt was dismissed
        refused,               ///< any other answer of the provider
    };

    Code code = Code::success;
    std::string message; ///< for the user; empty on success

    bool isSuccess() const { return code == Code::success; }
};

class SecretItems {
  public:
    struct Match {
        SecretStatus status;
        std::optional<std::string> data; ///< the item's bytes, present on success
    };

    enum class Presence { present, absent, unknown };
    using PresenceHandler = std::function<void(Presence)>;

    virtual ~SecretItems() = default;

    /// The data of at most one matching item.
    virtual Match copyMatching(const SecretItemQuery& query) = 0;
    /// Whether there is an item with data, without waiting and without an unlock prompt. A locked
    /// item counts as present. The handler is called once, on any thread, perhaps within this call;
    /// never when the store is destroyed before.
    virtual void checkPresence(const SecretItemQuery& query, PresenceHandler handler) = 0;
    /// Adds an item that does not exist yet. An add that was reported as failed does not happen
    /// later.
    virtual SecretStatus add(const SecretItemQuery& query, std::string_view data,
                             SecretAccessibility accessibility) = 0;
    /// Removes every matching item.
    virtual SecretStatus remove(const SecretItemQuery& query) = 0;
};

} // namespace orlune
