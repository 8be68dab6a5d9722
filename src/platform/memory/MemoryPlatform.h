// A whole platform in memory: every facility by hand, a queue for the main actor, one for the
// background, and one clock. What
// happened to sockets, pasteboard, keys and trust stands in one order in `events`. What was made
// from `bundle()` ends before it.
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
#include "platform/memory/MemoryWindowServer.h"
#include "platform/memory/TurnQueue.h"

namespace orlune {

struct MemoryPlatform {
    MemoryPlatform() = default;
    /// Breaks every connection, wakes nobody any more and runs what that ends, so that no work
    /// outlives the facilities it uses.
    ~MemoryPlatform();
    MemoryPlatform(const MemoryPlatform&) = delete;
    MemoryPlatform& operator=(const MemoryPlatform&) = delete;

    /// The facilities as everybody above sees them.
    Platform bundle() { return bundle(queue); }
    /// The same with another main actor, which hands its work to `queue`.
    Platform bundle(MainActor& mainActor);

    /// Turns the clock in steps, so that everybody who sleeps wakes at his own time, and runs what
    /// that queues.
    void advance(Clock::Duration duration);
    /// Turns both queues until nothing is left on either. Returns how many turns ran.
    std::size_t runUntilIdle();
    /// The oldest turn of the background, or of the main actor when there is none. False when
    /// nothing is left.
    bool runOne() { return background.runOne() || queue.runOne(); }

    MemoryEvents events = makeMemoryEvents();
    // Before whatever resumes work on them.
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
    MemoryWindowServer windowServer;
    MemorySound sound;
    MemoryUrlOpener urlOpener;
};

} // namespace orlune
