#include "platform/linux/secrets/PromptWatch.h"

namespace orlune {

namespace {

constexpr auto watchKey = "orlune-prompt-watch";

PromptWatch& watchOf(SecretService* service) {
    return *static_cast<PromptWatch*>(g_object_get_data(G_OBJECT(service), watchKey));
}

void note(PromptWatch& watch, bool isStanding) {
    watch.isStanding = isStanding;
    ++watch.changes;
}

/// One open prompt, kept by the task that completes when it ends.
struct Asking {
    explicit Asking(PromptWatch& of) : watch(of) {}

    PromptWatch& watch;
    std::string answerType;
    GlibObject<GDBusConnection> bus; ///< null once the prompt is over
    guint completion = 0;
    guint ownerWatch = 0;
};

void end(gpointer task) {
    auto& asking = *static_cast<Asking*>(g_task_get_task_data(G_TASK(task)));
    g_dbus_connection_signal_unsubscribe(asking.bus.get(), asking.completion);
    g_bus_unwatch_name(asking.ownerWatch);
    asking.bus.reset();
    note(asking.watch, /*isStanding=*/false);
}

const Asking& askingOf(gpointer task) {
    return *static_cast<const Asking*>(g_task_get_task_data(G_TASK(task)));
}

bool isOver(gpointer task) {
    return !askingOf(task).bus;
}

gpointer referenced(GTask* task) {
    return g_object_ref(task);
}

void onCompleted(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                 GVariant* parameters, gpointer argument) {
    if (isOver(argument)) {
        return;
    }
    const GlibObject<GTask> task(G_TASK(g_object_ref(argument)));
    end(task.get());
    gboolean isDismissed = TRUE;
    GVariant* answer = nullptr;
    if (g_variant_is_of_type(parameters, G_VARIANT_TYPE("(bv)"))) {
        g_variant_get(parameters, "(bv)", &isDismissed, &answer);
    }
    const GlibVariant owned(answer);
    const GlibVariantType expected(g_variant_type_new(askingOf(task.get()).answerType.c_str()));
    if (isDismissed) {
        // Without an error, the library would read an answer that does not exist.
        g_task_return_new_error(task.get(), promptDismissal(), 0, "the prompt was dismissed");
    } else if (!g_variant_is_of_type(answer, expected.get())) {
        g_task_return_new_error(task.get(), G_IO_ERROR, G_IO_ERROR_INVALID_DATA,
                                "its prompt ended with something unexpected");
    } else {
        g_task_return_pointer(task.get(), g_variant_ref(answer), [](gpointer value) {
            g_variant_unref(static_cast<GVariant*>(value));
        });
    }
}

void onVanished(GDBusConnection*, const gchar*, gpointer argument) {
    if (isOver(argument)) {
        return;
    }
    const GlibObject<GTask> task(G_TASK(g_object_ref(argument)));
    end(task.get());
    g_task_return_new_error(task.get(), G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER,
                            "it ended while it asked for a password");
}

void onAsked(GObject* bus, GAsyncResult* result, gpointer argument) {
    const GlibObject<GTask> task(G_TASK(argument));
    GError* error = nullptr;
    const GlibVariant answer(g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error));
    if (error && !isOver(task.get())) {
        end(task.get());
        g_task_return_error(task.get(), error);
    } else {
        g_clear_error(&error);
    }
}

/// Replaces the library's implementation, which dismisses the prompt when it is cancelled, and
/// never completes when the provider ends during a prompt.
void prompt(SecretService* service, SecretPrompt* shown, const GVariantType* answerType,
            GCancellable*, GAsyncReadyCallback callback, gpointer argument) {
    constexpr auto interface = "org.freedesktop.Secret.Prompt";
    auto& watch = watchOf(service);
    auto* const bus = g_dbus_proxy_get_connection(G_DBUS_PROXY(shown));
    const char* const path = g_dbus_proxy_get_object_path(G_DBUS_PROXY(shown));
    const GlibObject<GTask> task(g_task_new(service, /*cancellable=*/nullptr, callback, argument));
    const GlibText owner(g_dbus_proxy_get_name_owner(G_DBUS_PROXY(service)));
    if (!owner) {
        g_task_return_new_error(task.get(), G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER,
                                "it ended before it asked for a password");
        return;
    }
    auto* const asking = new Asking(watch);
    asking->bus.reset(G_DBUS_CONNECTION(g_object_ref(bus)));
    asking->answerType = answerType ? std::string(g_variant_type_peek_string(answerType),
                                                  g_variant_type_get_string_length(answerType))
                                    : "*";
    g_task_set_task_data(task.get(), asking,
                         [](gpointer data) { delete static_cast<Asking*>(data); });
    note(watch, /*isStanding=*/true);
    asking->completion = g_dbus_connection_signal_subscribe(
        bus, owner.get(), interface, "Completed", path, /*arg0=*/nullptr, G_DBUS_SIGNAL_FLAGS_NONE,
        onCompleted, referenced(task.get()), g_object_unref);
    asking->ownerWatch = g_bus_watch_name_on_connection(
        bus, owner.get(), G_BUS_NAME_WATCHER_FLAGS_NONE, /*name_appeared=*/nullptr, onVanished,
        referenced(task.get()), g_object_unref);
    g_dbus_connection_call(bus, owner.get(), path, interface, "Prompt", g_variant_new("(s)", ""),
                           /*reply_type=*/nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, G_MAXINT,
                           /*cancellable=*/nullptr, onAsked, referenced(task.get()));
}

GVariant* promptFinish(SecretService*, GAsyncResult* result, GError** error) {
    return static_cast<GVariant*>(g_task_propagate_pointer(G_TASK(result), error));
}

GType watchedServiceType() {
    static const GType type = g_type_register_static_simple(
        SECRET_TYPE_SERVICE, "OrluneWatchedSecretService", sizeof(SecretServiceClass),
        [](gpointer made, gpointer) {
            auto* const service = static_cast<SecretServiceClass*>(made);
            service->prompt_async = prompt;
            service->prompt_finish = promptFinish;
        },
        sizeof(SecretService), nullptr, static_cast<GTypeFlags>(0));
    return type;
}

} // namespace

GQuark promptDismissal() {
    return g_quark_from_static_string("orlune-prompt-dismissal");
}

void openWatchedService(GCancellable* cancellable, GAsyncReadyCallback callback,
                        gpointer argument) {
    secret_service_open(watchedServiceType(), /*service_bus_name=*/nullptr,
                        SECRET_SERVICE_OPEN_SESSION, cancellable, callback, argument);
}

GlibObject<SecretService> openWatchedServiceFinish(GAsyncResult* result, PromptWatch& watch,
                                                   GError** error) {
    GlibObject<SecretService> service(secret_service_open_finish(result, error));
    if (service) {
        g_object_set_data(G_OBJECT(service.get()), watchKey, &watch);
    }
    return service;
}

} // namespace orlune
