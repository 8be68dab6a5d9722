#include "app/OrluneApp.h"

#include "app/commands/RemoteCommand.h"
#include "app/desktop/Display.h"
#include "app/desktop/LinuxDesktop.h"
#include "app/desktop/TrustDialog.h"
#include "app/remote/Status.h"
#include "ui/Picture.h"
#include "visuals/OrluneMark.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>
#include <QSessionManager>
#include <QSocketNotifier>
#include <QTimer>
#include <QWindow>

#include <stdexcept>

namespace orlune {

namespace {

/// The toolkit reads it when it connects to an X server.
constexpr auto noSharedPictures = "QT_XCB_NO_MITSHM";

/// Owns the shared state, which uses the platform and must be destroyed first.
class SharedState {
  public:
    explicit SharedState(const Platform& platform) { AppState::install(platform); }
    ~SharedState() { AppState::uninstall(); }
    SharedState(const SharedState&) = delete;
    SharedState& operator=(const SharedState&) = delete;
};

/// Painted, so that windows have an icon even when the program is not installed.
QIcon applicationIcon() {
    QIcon icon;
    for (const int side : {16, 32, 48, 128}) {
        icon.addPixmap(ui::picture({side, side}, /*devicePixelRatio=*/1, [side](QPainter& painter) {
            OrluneMark::paint(painter, QRectF(0, 0, side, side));
        }));
    }
    return icon;
}

void nameApplication() {
    const auto identifier = QString::fromLatin1(bundleIdentifier);
    QCoreApplication::setApplicationName(identifier); // also sets the class of its windows
    QCoreApplication::setApplicationVersion(QStringLiteral(ORLUNE_VERSION));
    QGuiApplication::setDesktopFileName(identifier);
}

} // namespace

OrluneApp::OrluneApp(const LaunchOptions& options, const TerminationSignals& signals)
    : options_(options), signals_(signals),
      remote_({
          .reopen = [this] { delegate_->applicationShouldHandleReopen(); },
          .perform = [this](RemoteRequest request) { return perform(request); },
          .status = [this] { return statusJson(*state_); },
          .keyChanged = [this] { state_->checkDeepgramAPIKey(); },
      }) {}

int OrluneApp::run() {
    const auto claim = remote_.claim();
    if (claim == RemoteControl::Claim::anotherRuns) {
        return options_.isInBackground ? exitDone : reopenRunningInstance().value_or(exitFailed);
    }
    TrustDialog trustDialog;
    LinuxDesktop desktop({}, [&trustDialog](const auto& reason) { trustDialog.show(reason); });
    const auto& platform = desktop.platform();
    if (claim == RemoteControl::Claim::noBus) {
        Logger(platform.log, "RemoteControl")
            .error("There is no session bus: commands such as \"orlune toggle\" don't reach this "
                   "program");
    }
    const SharedState sharedState(platform);
    QSocketNotifier signalled(signals_.descriptor(), QSocketNotifier::Read);
    QObject::connect(&signalled, &QSocketNotifier::activated, &signalled, [this] {
        signals_.take();
        terminate();
    });
    const TakeDown takesDown(*this);
    launch(platform);
    // Disconnects before the state is taken down.
    const QObject whileRunning;
    QObject::connect(qApp, &QGuiApplication::focusWindowChanged, &whileRunning,
                     [this](const QWindow* window) {
                         if (window) {
                             state_->checkDeepgramAPIKey();
                         }
                     });
    desktop.watchScreenLock([this] { state_->cancelDictation(); });
    return QCoreApplication::exec();
}

/// Also runs when the launch fails half way: all parts use the desktop, which is destroyed next.
OrluneApp::TakeDown::~TakeDown() {
    app_.remote_.release();
    app_.statusItem_.reset();
    app_.delegate_.reset();
    app_.windows_.reset();
    if (app_.state_) {
        app_.state_->cancelDictation();
        app_.state_.reset();
    }
}

void OrluneApp::launch(const Platform& platform) {
    state_ = AppState::shared();
    const auto openMain = [this] { windows_->presentMain(); };
    const auto openSettings = [this] { windows_->presentSettings(); };
    const auto quit = [this] { terminate(); };
    windows_.emplace(state_, platform, quit);
    delegate_.emplace(state_, platform,
                      AppDelegate::Windows{.showMain = [this] { windows_->showMain(); },
                                           .activate = [this] { return windows_->activate(); },
                                           .openMain = openMain,
                                           .openSettings = openSettings});
    statusItem_.emplace(state_, platform.keyEventMonitors,
                        MenuBarContent::Actions{.openMainWindow = openMain,
                                                .openSettings = openSettings,
                                                .quit = quit});
    QTimer::singleShot(0, qApp, [this] {
        delegate_->applicationDidFinishLaunching(/*opensWindow=*/!options_.isInBackground);
    });
}

void OrluneApp::terminate() {
    remote_.release();
    state_->cancelDictation();
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
}

std::optional<std::string> OrluneApp::perform(RemoteRequest request) {
    using Recovery = AppState::Recovery;
    switch (request) {
    case RemoteRequest::toggle:
        toggleDictation(*state_);
        break;
    case RemoteRequest::press:
        press_.run();
        break;
    case RemoteRequest::start:
        state_->beginDictation();
        break;
    case RemoteRequest::stop:
        state_->endDictation();
        break;
    case RemoteRequest::confirm:
        state_->confirmIntent();
        break;
    case RemoteRequest::cancel:
        state_->cancelDictation();
        break;
    case RemoteRequest::recover:
        switch (state_->recoverUninsertedText()) {
        case Recovery::recovered:
            break;
        case Recovery::nothingToRecover:
            return "there is nothing to recover: everything that was said was inserted, or ten "
                   "minutes have passed";
        case Recovery::refused:
            return "another program keeps the clipboard; try again";
        }
        break;
    case RemoteRequest::show:
        delegate_->openMainWindow();
        break;
    case RemoteRequest::settings:
        delegate_->openSettings();
        break;
    case RemoteRequest::quit:
        terminate();
        break;
    }
    return std::nullopt;
}

int runOrluneApp(const LaunchOptions& options, int& argumentCount, char** arguments) {
    const TerminationSignals signals;
    // The cheap check comes first; of two launches at the same moment, the name decides.
    if (const auto exitCode = options.isInBackground ? std::nullopt : reopenRunningInstance()) {
        return *exitCode;
    }
    if (chooseX()) {
        if (const auto problem = displayProblem()) {
            throw std::runtime_error(
                "Orlune needs a display, and " + *problem
                + ". Start it inside a graphical session; in a Wayland session, Xwayland has to be "
                  "installed.");
        }
    }
    // The meter's frames have a few kilobytes. Writing them to the X server costs less than
    // waiting, before each frame, until the server has read the last one from shared memory.
    qputenv(noSharedPictures, "1");
    QApplication application(argumentCount, arguments);
    qunsetenv(noSharedPictures); // must not be inherited by other programs
    nameApplication();
    QApplication::setWindowIcon(applicationIcon());
    QApplication::setQuitOnLastWindowClosed(false);
    // The user decides whether it starts at login; the session manager must not restart it
    // because it ran at logout.
    QObject::connect(
        &application, &QGuiApplication::saveStateRequest,
        [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); });
    return OrluneApp(options, signals).run();
}

} // namespace orlune
