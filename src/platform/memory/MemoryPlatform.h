// A whole platform in memory: every facility, a queue for the main actor, one for the background,
// and one clock, all controlled by the test. `events` records in one order what happened to
// sockets, pasteboard, keys and trust. Everything made from `bundle()` must end before it.
#pragma once

#include "platform/Platform.h"
#include "platform/memory/ManualClock.h"
#include "platform/memory/MemoryAccessibility.h"
#include "platform/memory/MemoryAudioConverter.h"
#include "platform/memory/MemoryAudioEngine.h"
#include "platform/memory/MemoryCaptureAuthorization.h"
#include "platform/memory/MemoryDisplayOptions.h"
#include "platform/memory/MemoryKeyEventPosting.h"
#include "platform/memory/MemoryKeyEvents.h"
#include "platform/memory/MemoryLog.h"
#include "platform/memory/MemoryPasteboard.h"
#include "platform/memory/MemoryScreens.h"
#include "platform/memory/MemorySecretItems.h"
#include "platform/memory/MemorySound.h"
#include "platform/memory/MemoryUrlOpener.h"
#include "platform/memory/MemoryUserDefaults.h"
#include "platform/memory/MemoryWebSocket.h"
#include "platform/memory/MemoryWindowFacilities.h"
#include "platform/memory/TurnQueue.h"

namespace orlune {

struct MemoryPlatform {
    MemoryPlatform() = default;
    /// Breaks every connection, unwinds the sleepers and runs the resulting work, so that no work
    /// outlives the facilities it uses.
    ~MemoryPlatform();
    MemoryPlatform(const MemoryPlatform&) = delete;
    MemoryPlatform& operator=(const MemoryPlatform&) = delete;

    /// The facilities as the code above the platform sees them.
    Platform bundle() { return bundle(queue); }
    /// The same with another main actor, which must hand its work to `queue`.
    Platform bundle(MainActor& mainActor);

    /// Advances the clock in steps, so that each sleeper wakes at its own time, and runs the
    /// resulting work.
    void advance(Clock::Duration duration);
    /// Runs both queues until they are empty. Returns how many turns ran.
    std::size_t runUntilIdle();
    /// Runs the oldest turn of the background, or of the main actor when the background has none.
    /// False when both are empty.
    bool runOne() { return background.runOne() || queue.runOne(); }

    MemoryEvents events = makeMemoryEvents();
    // Declared before everything that resumes work on the queues.
    TurnQueue queue;
    TurnQueue background;
    ManualClock clock;
    MemoryLog log;
    MemoryUserDefaults userDefaults;
    MemorySecretItems secretItems;
    MemoryAudioEngine audioEngine;
    MemoryAudioConverter audioConverter;
    MemoryAccessibility accessibility{events};
    MemoryPasteboard pasteboard{events};
    MemoryKeyEventPosting keyEventPosting{events};
    MemoryKeyEvents keyEventMonitors{events};
    MemoryWebSocketSession webSockets{events};
    MemoryCaptureAuthorization captureAuthorization;
    MemoryDisplayOptions displayOptions;
    MemoryScreens screens;
    MemoryWindowFacilities windowFacilities;
    MemorySound sound;
    MemoryUrlOpener urlOpener;
};

} // namespace orlune
