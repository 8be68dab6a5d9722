#include "platform/linux/secrets/SecretServiceSession.h"

#include "platform/Platform.h"

#include <algorithm>

namespace orlune {

namespace {

using Code = SecretStatus::Code;
using namespace std::chrono_literals;

/// Nobody reads a question in less time: a prompt that ends sooner was never shown.
constexpr auto shortestLookAtPrompt = 200ms;
/// The label that the store requires and that password managers show.
constexpr auto itemLabel = "Orlune";
/// The label that the desktop's own programs give to the collection they create.
constexpr auto defaultCollectionLabel = "Default keyring";
constexpr auto nothingShared =
    "KeePassXC shares nothing with other programs. In the settings of its database, share a group "
    "under Secret Service Integration.";

/// Ends an operation early. Never leaves this file.
struct Failure {
    SecretStatus status;
};

const SecretSchema& schema() {
    static const SecretSchema value = [] {
        SecretSchema made = {};
        made.name = bundleIdentifier;
        // If the name had to match as well, a locked keyring would answer "no such item".
        made.flags = SECRET_SCHEMA_DONT_MATCH_NAME;
        made.attributes[0] = {"service", SECRET_SCHEMA_ATTRIBUTE_STRING};
        made.attributes[1] = {"account", SECRET_SCHEMA_ATTRIBUTE_STRING};
        return made;
    }();
    return value;
}

GlibTable attributes(const SecretItemQuery& query) {
    return GlibTable(secret_attributes_build(&schema(), "service", query.service.c_str(), "account",
                                             query.account.c_str(), nullptr));
}

SecretStatus unavailable(const std::string& reason) {
    return {Code::notAvailable, "No keyring answers on this desktop: " + reason};
}

bool isTimeout(const GlibError& error) {
    return error.is(G_IO_ERROR, G_IO_ERROR_TIMED_OUT)
           || error.is(G_DBUS_ERROR, G_DBUS_ERROR_TIMEOUT)
           || error.is(G_DBUS_ERROR, G_DBUS_ERROR_TIMED_OUT);
}

bool isAbsence(const GlibError& error) {
    if (error.domain() == G_IO_ERROR) {
        return error.code() == G_IO_ERROR_CLOSED || error.code() == G_IO_ERROR_CANCELLED
               || error.code() == G_IO_ERROR_BROKEN_PIPE;
    }
    if (error.domain() != G_DBUS_ERROR) {
        return false;
    }
    switch (error.code()) {
    case G_DBUS_ERROR_SERVICE_UNKNOWN:
    case G_DBUS_ERROR_NAME_HAS_NO_OWNER:
    case G_DBUS_ERROR_NO_REPLY:
    case G_DBUS_ERROR_NO_SERVER:
    case G_DBUS_ERROR_DISCONNECTED:
        return true;
    default:
        return false;
    }
}

/// Maps an error of the provider, and keeps its text.
SecretStatus statusOf(GlibError& error) {
    if (isTimeout(error)) {
        return {Code::timedOut, "The keyring does not answer: " + error.text()};
    }
    if (isAbsence(error)) {
        return unavailable(error.text());
    }
    if (error.domain() == promptDismissal()) {
        return {Code::userCanceled, "The keyring's prompt was dismissed."};
    }
    if (error.is(SECRET_ERROR, SECRET_ERROR_IS_LOCKED)) {
        return {Code::interactionNotAllowed, "The keyring is locked: " + error.text()};
    }
    if (error.is(SECRET_ERROR, SECRET_ERROR_NO_SUCH_OBJECT)) {
        return {Code::itemNotFound, "The keyring no longer holds the item: " + error.text()};
    }
    return {Code::refused, "The keyring refused: " + error.text()};
}

void throwIf(GlibError& error) {
    if (error) {
        throw Failure{statusOf(error)};
    }
}

bool isLocked(const GlibObject<SecretItem>& item) {
    return secret_item_get_locked(item.get()) != 0;
}

} // namespace

SecretServiceSession::SecretServiceSession(GlibThread& thread, bool hasDisplay)
    : thread_(thread), hasDisplay_(hasDisplay) {}

template <typename Operation>
SecretStatus SecretServiceSession::guarded(Operation operation) {
    try {
        connect();
        operation();
        return {};
    } catch (const Failure& failure) {
        return failure.status;
    }
}

template <typename Start>
GlibObject<GAsyncResult> SecretServiceSession::await(Start start) {
    auto result = thread_.await(std::move(start));
    if (!result) {
        throw Failure{unavailable("the program is ending")};
    }
    return result;
}

SecretItems::Match SecretServiceSession::copyMatching(const SecretItemQuery& query) {
    SecretItems::Match match;
    match.status = guarded([&] {
        const auto items = searchUnlocked(query);
        if (items.empty()) {
            throw Failure{{Code::itemNotFound, "The keyring holds no such item."}};
        }
        auto found = std::find_if_not(items.begin(), items.end(), isLocked);
        if (found == items.end()) {
            found = items.begin();
            unlock(found->get());
        }
        const auto value = secretOf(found->get());
        std::size_t length = 0;
        const char* bytes = secret_value_get(value.get(), &length);
        match.data.emplace(bytes, length);
    });
    return match;
}

SecretValueHandle SecretServiceSession::secretOf(SecretItem* item) {
    GlibError error;
    const auto result = await([&](auto callback, auto argument) {
        secret_item_load_secret(item, thread_.ending(), callback, argument);
    });
    secret_item_load_secret_finish(item, result.get(), error.receive());
    throwIf(error);
    SecretValueHandle value(secret_item_get_secret(item));
    if (!value) {
        throw Failure{{Code::refused, "The keyring did not hand out the item."}};
    }
    return value;
}

SecretItems::Presence SecretServiceSession::presence(const SecretItemQuery& query) {
    auto presence = SecretItems::Presence::unknown;
    const auto status = guarded([&] {
        const auto items = search(query);
        const auto open = std::find_if_not(items.begin(), items.end(), isLocked);
        bool isThere = !items.empty();
        if (open != items.end()) {
            std::size_t length = 0;
            const auto value = secretOf(open->get());
            secret_value_get(value.get(), &length);
            isThere = length > 0;
        } else if (items.empty()) {
            // Some providers hide the items of a locked collection.
            const auto collection = defaultCollection();
            if (collection && secret_collection_get_locked(collection.get())) {
                return;
            }
        }
        presence = isThere ? SecretItems::Presence::present : SecretItems::Presence::absent;
    });
    return status.isSuccess() ? presence : SecretItems::Presence::unknown;
}

SecretStatus SecretServiceSession::add(const SecretItemQuery& query, std::string_view data,
                                       const std::function<bool()>& isWanted) {
    bool isUncertain = false;
    auto status = guarded([&] {
        auto collection = defaultCollection();
        if (!collection) {
            collection = createDefaultCollection();
        }
        if (secret_collection_get_locked(collection.get())) {
            unlock(collection.get());
        }
        if (!search(query).empty()) {
            throw Failure{{Code::duplicateItem, "The keyring holds such an item already."}};
        }
        if (!isWanted()) {
            throw Failure{{Code::timedOut, "The keyring was unlocked too late."}};
        }
        const auto table = attributes(query);
        const SecretValueHandle value(
            secret_value_new(data.data(), static_cast<gssize>(data.size()), "text/plain"));
        GlibError error;
        const auto result = await([&](auto callback, auto argument) {
            secret_item_create(collection.get(), &schema(), table.get(), itemLabel, value.get(),
                               SECRET_ITEM_CREATE_REPLACE, thread_.ending(), callback, argument);
        });
        const GlibObject<SecretItem> item(secret_item_create_finish(result.get(), error.receive()));
        isUncertain = error && isTimeout(error);
        throwIf(error);
        if (!item) {
            throw Failure{{Code::userCanceled, "The keyring's prompt was dismissed."}};
        }
    });
    if (isUncertain) {
        withdraw(query);
    }
    return status;
}

SecretStatus SecretServiceSession::remove(const SecretItemQuery& query) {
    return guarded([&] {
        const auto items = searchUnlocked(query);
        if (items.empty()) {
            throw Failure{{Code::itemNotFound, "The keyring holds no such item."}};
        }
        for (const auto& item : items) {
            if (isLocked(item)) {
                unlock(item.get());
            }
            GlibError error;
            const auto result = await([&](auto callback, auto argument) {
                secret_item_delete(item.get(), thread_.ending(), callback, argument);
            });
            const bool isDeleted =
                secret_item_delete_finish(item.get(), result.get(), error.receive()) != 0;
            throwIf(error);
            if (!isDeleted) {
                throw Failure{{Code::userCanceled, "The keyring's prompt was dismissed."}};
            }
        }
    });
}

void SecretServiceSession::withdraw(const SecretItemQuery& query) {
    // The provider processes our messages in order: when it answers this one, it has finished the
    // add.
    while (!thread_.isEnding() && remove(query).code == Code::timedOut) {
    }
}

void SecretServiceSession::disconnect() {
    service_.reset();
    bus_.reset();
}

void SecretServiceSession::connect() {
    if (service_ && !g_dbus_connection_is_closed(bus_.get())) {
        const GlibText owner(g_dbus_proxy_get_name_owner(G_DBUS_PROXY(service_.get())));
        if (owner && owner_ == owner.get()) {
            return;
        }
    }
    // A session with one provider is not valid for the next.
    service_.reset();
    connectToBus();
    GlibError error;
    const auto open = [&] {
        const auto result = await([&](auto callback, auto argument) {
            openWatchedService(thread_.ending(), callback, argument);
        });
        return openWatchedServiceFinish(result.get(), prompts_, error.receive());
    };
    auto service = open();
    if (error && !isTimeout(error) && !isAbsence(error)) {
        // KWallet refuses a key that happens to be a byte shorter; another attempt uses another
        // key.
        service = open();
    }
    if (error) {
        throw Failure{isTimeout(error) ? statusOf(error) : unavailable(error.text())};
    }
    const GlibText owner(g_dbus_proxy_get_name_owner(G_DBUS_PROXY(service.get())));
    owner_ = owner ? owner.get() : "";
    service_ = std::move(service);
}

void SecretServiceSession::connectToBus() {
    if (bus_ && !g_dbus_connection_is_closed(bus_.get())) {
        return;
    }
    // GLib makes a new connection once the broken one is released.
    bus_.reset();
    GlibError error;
    const auto result = await([&](auto callback, auto argument) {
        g_bus_get(G_BUS_TYPE_SESSION, thread_.ending(), callback, argument);
    });
    bus_.reset(g_bus_get_finish(result.get(), error.receive()));
    if (!bus_) {
        throw Failure{unavailable("there is no session bus (" + error.text() + ")")};
    }
    // By default GLib ends the program together with the bus.
    g_dbus_connection_set_exit_on_close(bus_.get(), FALSE);
}

SecretServiceSession::Items SecretServiceSession::search(const SecretItemQuery& query) {
    const auto table = attributes(query);
    GlibError error;
    const auto result = await([&](auto callback, auto argument) {
        secret_service_search(service_.get(), &schema(), table.get(), SECRET_SEARCH_ALL,
                              thread_.ending(), callback, argument);
    });
    auto items = takeList<SecretItem>(
        secret_service_search_finish(service_.get(), result.get(), error.receive()));
    throwIf(error);
    return items;
}

SecretServiceSession::Items SecretServiceSession::searchUnlocked(const SecretItemQuery& query) {
    auto items = search(query);
    if (!items.empty()) {
        return items;
    }
    // Some providers hide the items of a locked collection.
    const auto collection = defaultCollection();
    if (!collection) {
        throw Failure{{Code::noDefaultStore,
                       isKeePassXC() ? nothingShared
                                     : "There is no default keyring. Create one in the desktop's "
                                       "password manager."}};
    }
    if (secret_collection_get_locked(collection.get())) {
        unlock(collection.get());
        items = search(query);
    }
    return items;
}

SecretServiceSession::Collection SecretServiceSession::defaultCollection() {
    GlibError error;
    const auto result = await([&](auto callback, auto argument) {
        secret_collection_for_alias(service_.get(), SECRET_COLLECTION_DEFAULT,
                                    SECRET_COLLECTION_NONE, thread_.ending(), callback, argument);
    });
    Collection collection(secret_collection_for_alias_finish(result.get(), error.receive()));
    throwIf(error);
    return collection;
}

/// By its other bus name, owned by the same process.
bool SecretServiceSession::isKeePassXC() {
    GlibError error;
    const auto result = await([&](auto callback, auto argument) {
        g_dbus_connection_call(bus_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
                               "org.freedesktop.DBus", "GetNameOwner",
                               g_variant_new("(s)", "org.keepassxc.KeePassXC.MainWindow"),
                               G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NONE, /*timeout=*/-1,
                               thread_.ending(), callback, argument);
    });
    const GlibVariant answer(
        g_dbus_connection_call_finish(bus_.get(), result.get(), error.receive()));
    const char* owner = "";
    if (answer) {
        g_variant_get(answer.get(), "(&s)", &owner);
    }
    return owner_ == owner;
}

SecretServiceSession::Collection SecretServiceSession::createDefaultCollection() {
    if (isKeePassXC()) {
        throw Failure{{Code::noDefaultStore, nothingShared}}; // it would create a whole database
    }
    GlibError error;
    const auto result = thread_.await([&](auto callback, auto argument) {
        secret_collection_create(service_.get(), defaultCollectionLabel, SECRET_COLLECTION_DEFAULT,
                                 SECRET_COLLECTION_CREATE_NONE, thread_.ending(), callback,
                                 argument);
    });
    Collection collection(result ? secret_collection_create_finish(result.get(), error.receive())
                                 : nullptr);
    if (!collection) {
        throw Failure{
            {Code::noDefaultStore, "There is no default keyring, and none could be created ("
                                       + (error ? error.text() : "the prompt was dismissed")
                                       + "). Create one in the desktop's password manager."}};
    }
    return collection;
}

void SecretServiceSession::unlock(SecretItem* item) {
    unlock(G_DBUS_PROXY(item));
}

void SecretServiceSession::unlock(SecretCollection* collection) {
    unlock(G_DBUS_PROXY(collection));
}

void SecretServiceSession::unlock(GDBusProxy* object) {
    GList objects = {object, nullptr, nullptr};
    GlibError error;
    const auto asked = std::chrono::steady_clock::now();
    const auto result = thread_.await([&](auto callback, auto argument) {
        secret_service_unlock(service_.get(), &objects, thread_.ending(), callback, argument);
    });
    if (!result) {
        throw Failure{unavailable("the program is ending")};
    }
    const int unlocked =
        secret_service_unlock_finish(service_.get(), result.get(), nullptr, error.receive());
    const bool isDismissed = error ? error.domain() == promptDismissal() : unlocked == 0;
    if (isDismissed) {
        throw Failure{dismissedPrompt(asked)};
    }
    throwIf(error);
}

SecretStatus
SecretServiceSession::dismissedPrompt(std::chrono::steady_clock::time_point asked) const {
    if (!hasDisplay_ || std::chrono::steady_clock::now() - asked < shortestLookAtPrompt) {
        return {Code::interactionNotAllowed,
                "The keyring is locked, and the desktop did not ask for its password. Unlock it "
                "in the desktop's password manager."};
    }
    return {Code::userCanceled, "The keyring stays locked: its prompt was dismissed."};
}

} // namespace orlune
