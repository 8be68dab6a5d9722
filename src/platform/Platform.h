// All facilities of a desktop in one bundle, which is filled where the program is put together and
// handed down. The referenced facilities outlive everything that receives the bundle.
#pragma once

#include "platform/Accessibility.h"
#include "platform/AudioConverter.h"
#include "platform/AudioEngine.h"
#include "platform/CaptureAuthorization.h"
#include "platform/DisplayOptions.h"
#include "platform/KeyEventPosting.h"
#include "platform/KeyEvents.h"
#include "platform/Log.h"
#include "platform/Pasteboard.h"
#include "platform/Screens.h"
#include "platform/SecretItems.h"
#include "platform/Sound.h"
#include "platform/UrlOpener.h"
#include "platform/UserDefaults.h"
#include "platform/WebSocket.h"
#include "platform/WindowFacilities.h"
#include "platform/concurrency/Clock.h"
#include "platform/concurrency/MainActor.h"

#include <string>

namespace orlune {

/// The program's name wherever the desktop needs one: secrets, log, D-Bus, configuration folder.
inline constexpr auto bundleIdentifier = "app.orlune.Orlune";

struct Platform {
    MainActor& mainActor;
    Executor background; ///< for work that may run on any thread
    Clock& clock;
    AudioEngineFactory makeAudioEngine;
    AudioConverterFactory makeAudioConverter;
    WebSocketSession& webSockets;
    SecretItems& secretItems;
    Accessibility& accessibility;
    Pasteboard& pasteboard;
    KeyEventPosting& keyEventPosting;
    KeyEvents& keyEventMonitors;
    UserDefaults& userDefaults;
    Log& log;
    CaptureAuthorization& captureAuthorization;
    DisplayOptions& displayOptions;
    Screens& screens;
    WindowFacilities& windowFacilities;
    Sound& sound;
    UrlOpener& urlOpener;
    std::string speechEndpoint; ///< scheme, host and port of the transcription service
};

} // namespace orlune
