#include "app/desktop/LinuxDesktop.h"

#include "app/desktop/SessionInput.h"
#include "platform/audio/SpeexAudioConverter.h"
#include "platform/linux/pulse/MicrophonePresence.h"
#include "platform/linux/pulse/PulseAudioEngine.h"
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
#include "platform/linux/windows/X11WindowFacilities.h"
#include "platform/linux/x11/X11Bell.h"
#include "platform/network/BeastWebSocket.h"
#include "platform/network/ProxySettings.h"

#include <chrono>
#include <optional>

namespace orlune {

namespace {

/// How long the program's end waits for a service to answer a close: a few round trips around the
/// world, and short enough after Ctrl-C.
constexpr std::chrono::seconds closingLimit{1};

/// The replacement if there is one, or else the real facility, which lives as long as the desktop.
template <typename Real, typename Interface, typename Make>
Interface& replacedOr(Interface* replacement, std::unique_ptr<Real>& real, Make make) {
    if (replacement) {
        return *replacement;
    }
    real = make();
    return *real;
}

} // namespace

/// In the order of creation; destroyed in reverse order.
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
    std::optional<SessionInput> input;
    std::unique_ptr<ScreenLock> screenLock;
    std::unique_ptr<BeastWebSocketSession> webSockets;
    MicrophonePresence microphone;
    std::optional<DesktopDisplayOptions> displayOptions;
    QtScreens screens;
    X11WindowFacilities windowFacilities;
    X11Bell bell;
    DesktopUrlOpener urlOpener;
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
    input.emplace(configuration, std::move(trustPrompt), log);
    webSockets = std::make_unique<BeastWebSocketSession>(background.executor(),
                                                         ProxySettings::fromProcessEnvironment());
    if (!replacements.makeAudioEngine) {
        replacements.makeAudioEngine = [&log] { return std::make_unique<PulseAudioEngine>(&log); };
    }
    displayOptions.emplace(configuration.reduceMotion);
    const auto& endpoint = replacements.speechEndpoint;
    platform.emplace(Platform{
        *mainActor,
        background.executor(),
        clock,
        std::move(replacements.makeAudioEngine),
        SpeexAudioConverter::create,
        *webSockets,
        secrets,
        replacements.accessibility ? *replacements.accessibility : input->accessibility(),
        replacements.pasteboard ? *replacements.pasteboard : input->pasteboard(),
        replacements.keyEventPosting ? *replacements.keyEventPosting : input->keyEventPosting(),
        input->keyEvents(),
        defaults,
        log,
        microphone,
        *displayOptions,
        screens,
        windowFacilities,
        bell,
        urlOpener,
        endpoint.empty() ? configuration.endpoint : endpoint});
}

/// No work may run on either thread once the first facility is destroyed.
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

void LinuxDesktop::watchScreenLock(std::function<void()> onLock) {
    auto& input = *facilities_->input;
    facilities_->screenLock =
        std::make_unique<ScreenLock>([&input, onLock = std::move(onLock)](bool isLocked) {
            if (isLocked) {
                onLock();
            }
            input.setLocked(isLocked);
        });
}

} // namespace orlune
