#include "tests/support/ScriptedSecretService.h"

#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>

namespace orlune::test {

namespace {

constexpr auto collectionPath = "/org/freedesktop/secrets/collection/one";
constexpr auto itemPath = "/org/freedesktop/secrets/collection/one/1";
constexpr auto promptPath = "/org/freedesktop/secrets/prompt/1";
constexpr auto sessionPath = "/org/freedesktop/secrets/session/1";
constexpr auto deadline = std::chrono::seconds(5);
/// Longer than the program's limit below which a prompt counts as not shown.
constexpr auto readingTime = std::chrono::milliseconds(300);

GVariant* paths(const char* path) {
    return path ? g_variant_new_objv(&path, 1)
                : g_variant_new_array(G_VARIANT_TYPE_OBJECT_PATH, nullptr, 0);
}

} // namespace

ScriptedSecretService::ScriptedSecretService(const std::string& busAddress) {
    constexpr auto flags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
                                          | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    connection_.reset(g_dbus_connection_new_for_address_sync(busAddress.c_str(), flags, nullptr,
                                                             nullptr, nullptr));
    if (!connection_) {
        throw std::runtime_error("no bus for the scripted keyring");
    }
    g_dbus_connection_add_filter(connection_.get(), &ScriptedSecretService::filter, this, nullptr);
    takeName("org.freedesktop.secrets");
}

void ScriptedSecretService::takeName(const char* name) {
    const GlibVariant owned(g_dbus_connection_call_sync(
        connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "RequestName", g_variant_new("(su)", name, 0u), nullptr, G_DBUS_CALL_FLAGS_NONE, -1,
        nullptr, nullptr));
    if (!owned) {
        throw std::runtime_error("no name for the scripted keyring");
    }
}

ScriptedSecretService::~ScriptedSecretService() {
    // Waits until the filter has returned for the last time.
    g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
}

void ScriptedSecretService::lock() {
    const std::lock_guard lock(mutex_);
    isLocked_ = true;
}

void ScriptedSecretService::answerPrompt(bool isUnlocked) {
    waitForPrompt();
    std::this_thread::sleep_for(readingTime);
    const std::lock_guard lock(mutex_);
    isPromptStanding_ = false;
    isLocked_ = !isUnlocked;
    auto* signal =
        g_dbus_message_new_signal(promptPath, "org.freedesktop.Secret.Prompt", "Completed");
    g_dbus_message_set_body(signal, g_variant_new("(bv)", isUnlocked ? FALSE : TRUE,
                                                  paths(isUnlocked ? collectionPath : nullptr)));
    send(signal);
}

void ScriptedSecretService::waitForPrompt() {
    std::unique_lock lock(mutex_);
    if (!changed_.wait_for(lock, deadline, [this] { return isPromptStanding_; })) {
        throw std::runtime_error("nobody was asked for a password");
    }
}

void ScriptedSecretService::endAtPrompt() {
    waitForPrompt();
    g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
}

int ScriptedSecretService::promptCount() const {
    const std::lock_guard lock(mutex_);
    return promptCount_;
}

int ScriptedSecretService::dismissalCount() const {
    const std::lock_guard lock(mutex_);
    return dismissalCount_;
}

void ScriptedSecretService::refuseNextSession(std::string text) {
    const std::lock_guard lock(mutex_);
    sessionRefusal_ = std::move(text);
}

void ScriptedSecretService::becomeKeePassXCThatSharesNothing() {
    {
        const std::lock_guard lock(mutex_);
        hasCollection_ = false;
    }
    takeName("org.keepassxc.KeePassXC.MainWindow");
}

void ScriptedSecretService::refuseAdds(std::string text) {
    const std::lock_guard lock(mutex_);
    refusal_ = std::move(text);
}

void ScriptedSecretService::holdAnswersToAdds() {
    const std::lock_guard lock(mutex_);
    isHolding_ = true;
}

void ScriptedSecretService::releaseAnswersToAdds() {
    const std::lock_guard lock(mutex_);
    isHolding_ = false;
    for (const auto& message : held_) {
        reply(message.get(), g_variant_new("(oo)", itemPath, "/"));
    }
    held_.clear();
}

bool ScriptedSecretService::hasItem() const {
    const std::lock_guard lock(mutex_);
    return !items_.empty();
}

int ScriptedSecretService::addCount() const {
    const std::lock_guard lock(mutex_);
    return addCount_;
}

GDBusMessage* ScriptedSecretService::filter(GDBusConnection*, GDBusMessage* message,
                                            gboolean isIncoming, gpointer argument) {
    if (!isIncoming
        || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) {
        return message;
    }
    auto* self = static_cast<ScriptedSecretService*>(argument);
    const std::lock_guard lock(self->mutex_);
    if (auto* body = self->answer(message)) {
        self->reply(message, body);
    }
    g_object_unref(message);
    return nullptr;
}

/// The reply's body; none when the call is answered elsewhere or later.
GVariant* ScriptedSecretService::answer(GDBusMessage* message) {
    const std::string member = g_dbus_message_get_member(message);
    const std::string path = g_dbus_message_get_path(message);
    auto* body = g_dbus_message_get_body(message);
    if (member == "GetAll") {
        return properties(path);
    }
    if (member == "OpenSession") {
        const char* algorithm = nullptr;
        g_variant_get_child(body, 0, "&s", &algorithm);
        if (std::string(algorithm) == "plain") {
            return g_variant_new("(vo)", g_variant_new_string(""), sessionPath);
        }
        const bool isRefused = !sessionRefusal_.empty();
        send(g_dbus_message_new_method_error_literal(
            message,
            isRefused ? "org.freedesktop.DBus.Error.InvalidArgs"
                      : "org.freedesktop.DBus.Error.NotSupported",
            isRefused ? std::exchange(sessionRefusal_, {}).c_str() : "plain only"));
        return nullptr;
    }
    if (member == "SearchItems") {
        return g_variant_new("(@ao@ao)", paths(items_.empty() || isLocked_ ? nullptr : itemPath),
                             paths(!items_.empty() && isLocked_ ? itemPath : nullptr));
    }
    if (member == "ReadAlias") {
        return g_variant_new("(o)", hasCollection_ ? collectionPath : "/");
    }
    if (member == "Unlock") {
        return g_variant_new("(@aoo)", paths(isLocked_ ? nullptr : collectionPath),
                             isLocked_ ? promptPath : "/");
    }
    if (member == "Prompt") {
        isPromptStanding_ = true;
        ++promptCount_;
        changed_.notify_all();
        return g_variant_new("()");
    }
    if (member == "Dismiss") {
        ++dismissalCount_;
        return g_variant_new("()");
    }
    if (member == "GetSecret") {
        const auto& data = items_.at(0);
        return g_variant_new(
            "((o@ay@ays))", sessionPath, g_variant_new_array(G_VARIANT_TYPE_BYTE, nullptr, 0),
            g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, data.data(), data.size(), 1),
            "text/plain");
    }
    if (member == "Delete") {
        items_.clear();
        return g_variant_new("(o)", "/");
    }
    if (member == "CreateItem" && refusal_.empty()) {
        GVariant* secret = nullptr;
        g_variant_get_child(body, 1, "(o@ay@ays)", nullptr, nullptr, &secret, nullptr);
        std::size_t length = 0;
        const auto* bytes = static_cast<const char*>(g_variant_get_fixed_array(secret, &length, 1));
        items_.assign(1, std::string(bytes, length));
        g_variant_unref(secret);
        ++addCount_;
        if (isHolding_) {
            held_.emplace_back(G_DBUS_MESSAGE(g_object_ref(message)));
            return nullptr;
        }
        return g_variant_new("(oo)", itemPath, "/");
    }
    send(g_dbus_message_new_method_error_literal(
        message, "org.example.Refused", refusal_.empty() ? member.c_str() : refusal_.c_str()));
    return nullptr;
}

GVariant* ScriptedSecretService::properties(const std::string& path) const {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("(a{sv})"));
    g_variant_builder_open(&builder, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&builder, "{sv}", "Locked", g_variant_new_boolean(isLocked_));
    if (path == collectionPath) {
        g_variant_builder_add(&builder, "{sv}", "Items", paths(nullptr));
    } else if (path != itemPath) {
        g_variant_builder_add(&builder, "{sv}", "Collections", paths(collectionPath));
    }
    g_variant_builder_close(&builder);
    return g_variant_builder_end(&builder);
}

void ScriptedSecretService::reply(GDBusMessage* message, GVariant* body) {
    auto* answer = g_dbus_message_new_method_reply(message);
    g_dbus_message_set_body(answer, body);
    send(answer);
}

void ScriptedSecretService::send(GDBusMessage* message) {
    g_dbus_connection_send_message(connection_.get(), message, G_DBUS_SEND_MESSAGE_FLAGS_NONE,
                                   nullptr, nullptr);
    g_object_unref(message);
}

} // namespace orlune::test
