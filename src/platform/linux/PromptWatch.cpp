#include "platform/linux/PromptWatch.h"

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

SecretServiceClass* parentOf(SecretService* service) {
    return SECRET_SERVICE_CLASS(g_type_class_peek_parent(SECRET_SERVICE_GET_CLASS(service)));
}

void prompt(SecretService* service, SecretPrompt* shown, const GVariantType* returnType,
            GCancellable*, GAsyncReadyCallback callback, gpointer argument) {
    note(watchOf(service), /*isStanding=*/true);
    // Without the cancellable, on which the library would dismiss the prompt.
    parentOf(service)->prompt_async(service, shown, returnType, nullptr, callback, argument);
}

GVariant* promptFinish(SecretService* service, GAsyncResult* result, GError** error) {
    note(watchOf(service), /*isStanding=*/false);
    return parentOf(service)->prompt_finish(service, result, error);
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
