#include "platform/memory/MemoryPlatform.h"

#include <algorithm>

namespace orlune {

MemoryPlatform::~MemoryPlatform() {
    do {
        for (const auto& socket : webSockets.tasks()) {
            socket->cancel(WebSocketCloseCode::goingAway);
        }
        clock.forgetSleepers();
    } while (queue.runUntilIdle() > 0);
}

Platform MemoryPlatform::bundle(MainActor& mainActor) {
    return Platform{mainActor,
                    queue.executor(),
                    clock,
                    audioEngine.factory(),
                    audioConverter.factory(),
                    webSockets,
                    secretItems,
                    accessibility,
                    pasteboard,
                    keyEvents,
                    keyEventMonitors,
                    userDefaults,
                    log,
                    captureAuthorization,
                    displayOptions,
                    screens,
                    windowServer,
                    sound,
                    urlOpener,
                    "wss://speech.example"};
}

void MemoryPlatform::advance(Clock::Duration duration) {
    queue.runUntilIdle();
    const auto end = clock.now() + duration;
    while (clock.now() < end) {
        const auto next = std::min(end, clock.nextWake().value_or(end));
        clock.advance(next - clock.now());
        queue.runUntilIdle();
    }
}

} // namespace orlune
