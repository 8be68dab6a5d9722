#include "app/commands/DictateCommand.h"

#include "app/commands/KeyCommand.h"
#include "app/commands/LocalServiceProcess.h"
#include "app/commands/StandardOutputInsertion.h"
#include "app/commands/TerminalDictation.h"
#include "app/commands/TerminalView.h"
#include "app/desktop/Display.h"
#include "app/desktop/LinuxDesktop.h"
#include "app/desktop/TerminationSignals.h"
#include "dictation/AppState.h"
#include "platform/SecureWipe.h"
#include "platform/audio/WaveFileAudioEngine.h"
#include "platform/linux/runtime/JournalLog.h"
#include "platform/linux/storage/ConfigurationFolder.h"
#include "platform/linux/storage/FileUserDefaults.h"
#include "platform/memory/MemorySecretItems.h"
#include "platform/memory/MemoryUserDefaults.h"

#include <QGuiApplication>
#include <boost/asio/post.hpp>

#include <chrono>
#include <optional>
#include <stdexcept>
#include <sys/ioctl.h>
#include <unistd.h>

namespace orlune {

namespace {

/// Longer than a recogniser that keeps up takes between two results.
constexpr std::chrono::milliseconds fastFeedQuiet{1500};

/// Prints log messages above the redrawn line.
class LogAboveView final : public Log {
  public:
    LogAboveView(Log& log, TerminalView& view) : log_(log), view_(view) {}
    void write(Level level, std::string_view category, std::string_view message) override {
        view_.print({});
        log_.write(level, category, message);
    }

  private:
    Log& log_;
    TerminalView& view_;
};

int terminalColumns() {
    constexpr int usual = 80;
    winsize size{};
    const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : usual;
}

std::unique_ptr<QCoreApplication> makeApplication(bool needsDisplay, int& argumentCount,
                                                  char** arguments) {
    if (!needsDisplay) {
        return std::make_unique<QCoreApplication>(argumentCount, arguments);
    }
    if (const auto problem = displayProblem()) {
        throw std::runtime_error("--insert needs a display, and " + *problem);
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    return std::make_unique<QGuiApplication>(argumentCount, arguments);
}

/// Copies the stored settings, so that this dictation can change its copy.
void copySettings(MemoryUserDefaults& copy, const DictateOptions& options, Log& log) {
    const FileUserDefaults stored(configurationFolder(processEnvironment()), log);
    for (const auto* key : {"activationMode", "dictationShortcut"}) {
        if (auto value = stored.object(key)) {
            copy.set(key, std::move(*value));
        }
    }
    copy.set("intentCheckEnabled", options.checksIntent);
}

/// The local service accepts any key; the user's own is not used.
void addLocalKey(MemorySecretItems& secrets) {
    static_cast<void>(secrets.add(KeychainStore::query(SecretKey::deepgramAPIKey), "local",
                                  SecretAccessibility::afterFirstUnlockThisDeviceOnly));
}

/// Opens a locked keyring first and waits for its prompt without limit. Throws when the prompt was
/// dismissed, because it would appear again. A missing key is reported by the dictation itself.
void openKeyring(SecretItems& keyring, TerminalView& view) {
    auto match = keyring.copyMatching(KeychainStore::query(SecretKey::deepgramAPIKey));
    if (match.data) {
        wipe(*match.data);
    }
    if (match.status.code == SecretStatus::Code::userCanceled) {
        throw std::runtime_error(match.status.message);
    }
    if (!match.status.isSuccess() && match.status.code != SecretStatus::Code::itemNotFound) {
        view.print("orlune: " + match.status.message + "\n");
    }
}

int dictate(const DictateOptions& options) {
    const bool isTerminal = isatty(STDERR_FILENO) != 0;
    TerminalView view(STDERR_FILENO, isTerminal, terminalColumns());
    JournalLog journal;
    LogAboveView log(journal, view);
    MemoryUserDefaults settings;
    copySettings(settings, options, log);

    LinuxDesktop::Replacements replacements;
    replacements.log = &log;
    replacements.userDefaults = &settings;

    StandardOutputInsertion standardOutput;
    if (!options.insertsText) {
        replacements.accessibility = &standardOutput;
        replacements.pasteboard = &standardOutput;
        replacements.keyEventPosting = &standardOutput;
    }

    // Caught only after a keyring's prompt: while that waits, they end the process at once.
    std::optional<TerminationSignals> signals;
    LocalServiceProcess localService;
    MemorySecretItems localSecrets;
    std::optional<SecretServiceItems> keyring;
    if (options.isLocal) {
        signals.emplace();
        replacements.speechEndpoint = localService.start();
        addLocalKey(localSecrets);
        replacements.secretItems = &localSecrets;
    } else {
        keyring.emplace(patientKeyring());
        replacements.secretItems = &*keyring;
    }

    std::function<void()> onInputEnd; // set below, before playback starts
    if (options.input) {
        const auto pace = options.isFast ? WaveFileAudioEngine::Pace::fast
                                         : WaveFileAudioEngine::Pace::microphone;
        auto opened =
            WaveFileAudioEngine::create(*options.input, pace, [&onInputEnd] { onInputEnd(); });
        if (!opened.engine) {
            throw std::runtime_error(opened.error);
        }
        auto engine = std::make_shared<std::unique_ptr<AudioEngine>>(std::move(opened.engine));
        replacements.makeAudioEngine = [engine] { return std::move(*engine); };
    }

    if (keyring) {
        openKeyring(*keyring, view);
        signals.emplace();
    }
    LinuxDesktop desktop(std::move(replacements),
                         [&view](const std::string& reason) { view.print(reason + "\n"); });
    const auto& platform = desktop.platform();

    TerminalDictation::Options terminal;
    terminal.inputIsTerminal = isatty(STDIN_FILENO) != 0;
    // With a file, its end is the end of the recording. The end of standard input then means
    // nothing, unless it is a terminal.
    terminal.input = options.input && !terminal.inputIsTerminal ? -1 : STDIN_FILENO;
    terminal.confirmsAtOnce = options.confirmsAtOnce;
    terminal.staysUntilIdle = options.insertsText;
    if (options.isFast) {
        terminal.quietBeforeEnd = fastFeedQuiet;
    }

    const auto state = AppState::make(platform);
    TerminalDictation dictation(state, platform.mainActor, view, *signals, terminal);
    onInputEnd = [&dictation, main = platform.mainActor.executor()] {
        boost::asio::post(main, [&dictation] { dictation.requestEnd(); });
    };
    const int exitCode = dictation.run();
    if (exitCode == exitDone && !standardOutput.wroteAll()) {
        throw std::runtime_error("The text couldn't be written to standard output");
    }
    return exitCode;
}

} // namespace

int runDictateCommand(const DictateOptions& options, int& argumentCount, char** arguments) {
    const auto application = makeApplication(options.insertsText, argumentCount, arguments);
    return dictate(options);
}

} // namespace orlune
