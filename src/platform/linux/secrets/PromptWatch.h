// A session with the provider of secrets that reports whether a prompt is open. This side never
// dismisses a prompt: GNOME Keyring's daemon would abort with a failed assertion. An open prompt
// ends with the process, whose place on the bus the provider watches.
#pragma once

#include "platform/linux/secrets/GlibHandles.h"

#include <atomic>

namespace orlune {

/// Written on the connection's thread, readable from any.
struct PromptWatch {
    std::atomic<bool> isStanding = false;
    std::atomic<unsigned int> changes = 0; ///< how often a prompt has opened or closed
};

/// The error domain of an operation whose prompt the user has dismissed.
GQuark promptDismissal();

/// Starts to open a session; completes with the service, or with an error. `watch` must outlive it.
void openWatchedService(GCancellable* cancellable, GAsyncReadyCallback callback, gpointer argument);
GlibObject<SecretService> openWatchedServiceFinish(GAsyncResult* result, PromptWatch& watch,
                                                   GError** error);

} // namespace orlune
