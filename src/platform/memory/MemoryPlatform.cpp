#include "platform/memory/MemoryPlatform.h"

#include <algorithm>

namespace orlune {

MemoryPlatform::~MemoryPlatform() {
    do {
        for (const auto& socket : webSockets.tasks()) {
            socket->cancel(WebSocketCloseCode::goingAway);
        }
        clock.forgetSleepers();
    } while (runUntilIdle() > 0);
}

Platform MemoryPlatform::bundle(MainActor& mainActor) {
    return Platform{mainActor,
                    background.executor(),
                    clock,
                    audioEngine.factory(),
                    audioConverter.factory(),
                    webSockets,
                    secretItems,
                    accessibility,
                    pasteboard,
                    keyEventPosting,
                    keyEventMonitors,
                    userDefaults,
                    log,
                    captureAuthorization,
                    displayOptions,
                    screens,
                    windowFacilities,
                    sound,
                    urlOpener,
                    "wss://speech.example"};
}

void MemoryPlatform::advance(Clock::Duration duration) {
    runUntilIdle();
    const auto end = clock.now() + duration;
    while (clock.now() < end) {
        const auto next = std::min(end, clock.nextWake().value_or(end));
        clock.advance(next - clock.now());
        runUntilIdle();
    }
}

std::size_t MemoryPlatform::runUntilIdle() {
    std::size_t total = 0;
    while (const auto ran = background.runUntilIdle() + queue.runUntilIdle()) {
        total += ran;
    }
    return total;
}

} // namespace orlune
