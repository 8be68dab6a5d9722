// A session with the provider of secrets that tells when a person is being asked. Its prompts are
// never dismissed from here: that would end GNOME Keyring's daemon with a failed assertion. A
// prompt that stands goes with the process, whose place on the bus the provider watches.
#pragma once

#include "platform/linux/secrets/GlibHandles.h"

#include <atomic>

namespace orlune {

/// Written on the connection's thread, read on any.
struct PromptWatch {
    std::atomic<bool> isStanding = false;
    std::atomic<unsigned int> changes = 0; ///< how often one came up or went
};

/// The domain of the error with which an operation ends whose prompt a person has dismissed.
GQuark promptDismissal();

/// Starts to open a session; completes with the service, or with an error. `watch` outlives it.
void openWatchedService(GCancellable* cancellable, GAsyncReadyCallback callback, gpointer argument);
GlibObject<SecretService> openWatchedServiceFinish(GAsyncResult* result, PromptWatch& watch,
                                                   GError** error);

} // namespace orlune
