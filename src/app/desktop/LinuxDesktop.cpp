#include "app/desktop/LinuxDesktop.h"

#include "platform/audio/SpeexAudioConverter.h"
#include "platform/linux/keys/XInputKeyEvents.h"
#include "platform/linux/paste/QtPasteboard.h"
#include "platform/linux/paste/XTestKeyPoster.h"
#include "platform/linux/pulse/PulseAudioEngine.h"
#include "platform/linux/pulse/PulseCaptureAuthorization.h"
#include "platform/linux/runtime/BackgroundThread.h"
#include "platform/linux/runtime/JournalLog.h"
#include "platform/linux/runtime/QtMainActor.h"
#include "platform/linux/runtime/SteadyClock.h"
#include "platform/linux/secrets/SecretServiceItems.h"
#include "platform/linux/session/ScreenLock.h"
#include "platform/linux/storage/FileUserDefaults.h"
#include "platform/linux/windows/DesktopDisplayOptions.h"
#include "platform/linux/windows/DesktopUrlOpener.h"
#include "platform/linux/windows/QtScreens.h"
#include "platform/linux/windows/X11WindowServer.h"
#include "platform/linux/x11/X11Accessibility.h"
#include "platform/linux/x11/X11Bell.h"
#include "platform/network/BeastWebSocket.h"
#include "platform/network/ProxySettings.h"

#include <QGuiApplication>

#include <chrono>
#include <optional>

namespace orlune {

namespace {

/// How long the program's end waits for a service to answer a close: a few round trips around the
/// world, and no more than a person bears after Ctrl-C.
constexpr std::chrono::seconds closingLimit{1};

/// The replacement, or what stands in its place for as long as the desktop does.
template <typename Real, typename Interface, typename Make>
Interface& replacedOr(Interface* replacement, std::unique_ptr<Real>& real, Make make) {
    if (replacement) {
        return *replacement;
    }
    real = make();
    return *real;
}

} // namespace

/// In the order of their making; the last made ends first.
struct LinuxDesktop::Facilities {
    Facilities(Replacements replacements, TrustPrompt trustPrompt);
    ~Facilities();

    const Environment environment = processEnvironment();
    const std::filesystem::path folder = configurationFolder(environment);
    const PlatformConfiguration configuration = PlatformConfiguration::load(folder, environment);

    std::unique_ptr<JournalLog> journal;
    BackgroundThread background;
    std::optional<QtMainActor> mainActor;
    SteadyClock clock{background.context()};
    std::unique_ptr<FileUserDefaults> fileDefaults;
    std::unique_ptr<SecretServiceItems> keyring;
    std::unique_ptr<X11Accessibility> x11Accessibility;
    std::unique_ptr<QtPasteboard> clipboard;
    std::unique_ptr<XInputKeyEvents> keyWatch; // before the poster, which tells it
    std::unique_ptr<XTestKeyPoster> xtest;
    std::unique_ptr<ScreenLock> screenLock;
    std::unique_ptr<BeastWebSocketSession> webSockets;
    std::unique_ptr<PulseCaptureAuthorization> microphone;
    std::unique_ptr<DesktopDisplayOptions> desktopSettings;
    std::unique_ptr<QtScreens> qtScreens;
    std::unique_ptr<X11WindowServer> x11Windows;
    std::unique_ptr<X11Bell> bell;
    std::unique_ptr<DesktopUrlOpener> otherPrograms;
    std::optional<Platform> platform;
};

LinuxDesktop::Facilities::Facilities(Replacements replacements, TrustPrompt trustPrompt) {
    mainActor.emplace();
    auto& log =
        replacedOr(replacements.log, journal, [] { return std::make_unique<JournalLog>(); });
    const Logger logger(log, "Configuration");
    for (const auto& problem : configuration.problems) {
        logger.error(problem);
    }
    auto& defaults = replacedOr(replacements.userDefaults, fileDefaults,
                                [&] { return std::make_unique<FileUserDefaults>(folder, log); });
    auto& secrets = replacedOr(replacements.secretItems, keyring,
                               [] { return std::make_unique<SecretServiceItems>(); });
    auto& accessibility = replacedOr(replacements.accessibility, x11Accessibility, [&] {
        return std::make_unique<X11Accessibility>(std::move(trustPrompt));
    });
    auto& pasteboard = replacedOr(replacements.pasteboard, clipboard,
                                  [] { return std::make_unique<QtPasteboard>(); });
    keyWatch = std::make_unique<XInputKeyEvents>(
        XInputKeyEvents::Surroundings{
            .functionKeyName = configuration.fnKey,
            .ownWindowHasKeyboard = [] { return QGuiApplication::focusWindow() != nullptr; }},
        log);
    auto& keyEventPosting = replacedOr(replacements.keyEventPosting, xtest, [&] {
        XTestKeyPoster::Hooks hooks;
        hooks.ownPrimarySelection = [this] {
            return clipboard && clipboard->ownPrimarySelection();
        };
        hooks.willPost = [this] { keyWatch->willPost(); };
        hooks.didPost = [this] { keyWatch->didPost(); };
        hooks.onModifiersReleased = [this](const auto& keys) { keyWatch->countAsReleased(keys); };
        return std::make_unique<XTestKeyPoster>(configuration.terminals, std::move(hooks));
    });
    webSockets = std::make_unique<BeastWebSocketSession>(background.executor(),
                                                         ProxySettings::fromProcessEnvironment());
    if (!replacements.makeAudioEngine) {
        replacements.makeAudioEngine = [&log] { return std::make_unique<PulseAudioEngine>(&log); };
    }
    auto& captureAuthorization = replacedOr(replacements.captureAuthorization, microphone, [] {
        return std::make_unique<PulseCaptureAuthorization>();
    });
    auto& displayOptions = replacedOr(replacements.displayOptions, desktopSettings, [&] {
        return std::make_unique<DesktopDisplayOptions>(configuration.reduceMotion);
    });
    auto& screens =
        replacedOr(replacements.screens, qtScreens, [] { return std::make_unique<QtScreens>(); });
    auto& windowServer = replacedOr(replacements.windowServer, x11Windows,
                                    [] { return std::make_unique<X11WindowServer>(); });
    auto& sound = replacedOr(replacements.sound, bell, [] { return std::make_unique<X11Bell>(); });
    auto& urlOpener = replacedOr(replacements.urlOpener, otherPrograms,
                                 [] { return std::make_unique<DesktopUrlOpener>(); });
    const auto& endpoint = replacements.speechEndpoint;
    platform.emplace(Platform{*mainActor,
                              background.executor(),
                              clock,
                              std::move(replacements.makeAudioEngine),
                              SpeexAudioConverter::create,
                              *webSockets,
                              secrets,
                              accessibility,
                              pasteboard,
                              keyEventPosting,
                              *keyWatch,
                              defaults,
                              log,
                              captureAuthorization,
                              displayOptions,
                              screens,
                              windowServer,
                              sound,
                              urlOpener,
                              endpoint.empty() ? configuration.endpoint : endpoint});
}

/// No work may run, on either thread, once the first facility is gone.
LinuxDesktop::Facilities::~Facilities() {
    webSockets->closeAll(closingLimit);
    background.stop();
    mainActor.reset();
}

LinuxDesktop::LinuxDesktop(Replacements replacements, TrustPrompt trustPrompt)
    : facilities_(std::make_unique<Facilities>(std::move(replacements), std::move(trustPrompt))) {}

LinuxDesktop::~LinuxDesktop() = default;

const Platform& LinuxDesktop::platform() const {
    return *facilities_->platform;
}

const PlatformConfiguration& LinuxDesktop::configuration() const {
    return facilities_->configuration;
}

void LinuxDesktop::watchScreenLock(std::function<void()> onLock) {
    auto& keyWatch = *facilities_->keyWatch;
    facilities_->screenLock =
        std::make_unique<ScreenLock>([&keyWatch, onLock = std::move(onLock)](bool isLocked) {
            if (isLocked) {
                onLock();
            }
            keyWatch.setLocked(isLocked);
        });
}

} // namespace orlune
