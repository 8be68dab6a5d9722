#include "platform/linux/shortcuts/SwayBindings.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace orlune {

namespace {

using sway::MessageType;

constexpr auto shortcutPurpose = "shortcut";
constexpr auto escapePurpose = "escape";
/// Bindings work even while another program inhibits the compositor's shortcuts, but not while the
/// screen is locked.
constexpr auto bindingOptions = "--inhibited";
const sway::Trigger escapeTrigger{.keys = "Escape"};

/// Distinguishes our bindings from the user's and from those of another instance.
std::string commandOf(const std::string& purpose, bool isDown) {
    return "nop orlune-" + std::to_string(getpid()) + '-' + purpose + (isDown ? "-down" : "-up");
}

std::string verb(const sway::Trigger& trigger) {
    return trigger.isCode ? "bindcode" : "bindsym";
}

FileDescriptor connectTo(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address.sun_path) {
        return FileDescriptor();
    }
    path.copy(address.sun_path, path.size());
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const bool isConnected =
        socket
        && ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address)
               == 0;
    return isConnected ? std::move(socket) : FileDescriptor();
}

} // namespace

std::string swaySocket() {
    const char* const path = std::getenv("SWAYSOCK");
    return path ? path : "";
}

bool SwayBindings::isThere(const std::string& socketPath) {
    return static_cast<bool>(connectTo(socketPath));
}

std::unique_ptr<SwayBindings> SwayBindings::open(const std::string& socketPath,
                                                 std::string functionKey) {
    auto socket = connectTo(socketPath);
    return std::unique_ptr<SwayBindings>(
        socket ? new SwayBindings(std::move(socket), std::move(functionKey)) : nullptr);
}

SwayBindings::SwayBindings(FileDescriptor socket, std::string functionKey)
    : socket_(std::move(socket)), functionKey_(std::move(functionKey)),
      readable_(std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Read)),
      writable_(std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Write)) {
    writable_->setEnabled(false);
    connect(readable_.get(), &QSocketNotifier::activated, this, [this] { read(); });
    connect(writable_.get(), &QSocketNotifier::activated, this, [this] { write(); });
    send(MessageType::subscribe, R"(["binding","workspace","shutdown"])", {});
    readConfiguration();
}

SwayBindings::~SwayBindings() {
    observer_ = {};
    watchEscape(false);
    for (const auto& trigger : bound_) {
        unbind(trigger);
    }
}

void SwayBindings::watch(const KeyCombination& shortcut) {
    if (std::exchange(watchesShortcut_, true) && shortcut == edges_.shortcut()) {
        return;
    }
    const auto released = edges_.setShortcut(shortcut);
    // Deferred, because it must not be reported within this call.
    QMetaObject::invokeMethod(this, [this, released] { report(released); }, Qt::QueuedConnection);
    bindAll();
}

void SwayBindings::watchEscape(bool isWanted) {
    watchesEscape_ = isWanted;
    const bool isFree =
        isConfigurationKnown_ && !sway::lineThatBinds(configuration_, escapeTrigger);
    if (isWanted && isFree && !std::exchange(isEscapeBound_, true)) {
        bind(escapeTrigger, escapePurpose, {});
    } else if (!isWanted && std::exchange(isEscapeBound_, false)) {
        unbind(escapeTrigger);
    }
}

void SwayBindings::releaseAll() {
    report(edges_.release());
}

/// The user's own bindings are read again each time they may have changed.
void SwayBindings::readConfiguration() {
    send(MessageType::getConfig, "", [this](const std::string& answer) {
        configuration_ = sway::configurationText(answer);
        isConfigurationKnown_ = true;
        bindAll();
        watchEscape(watchesEscape_);
    });
}

void SwayBindings::bindAll() {
    if (!isConfigurationKnown_ || !watchesShortcut_) {
        return;
    }
    for (const auto& trigger : std::exchange(bound_, {})) {
        unbind(trigger);
    }
    const auto triggers = sway::triggersFor(edges_.shortcut(), functionKey_);
    if (triggers.empty()) {
        setReason("sway can't report this combination of keys; choose another shortcut");
        return;
    }
    for (const auto& trigger : triggers) {
        if (const auto line = sway::lineThatBinds(configuration_, trigger)) {
            setReason("the configuration of sway uses these keys: \"" + *line + '"');
            return;
        }
    }
    bound_ = triggers;
    const auto failure = std::make_shared<std::optional<std::string>>();
    for (const auto& trigger : triggers) {
        const bool isLast = &trigger == &triggers.back();
        bind(trigger, shortcutPurpose, [this, failure, isLast](const auto& newFailure) {
            if (newFailure) {
                *failure = newFailure;
            }
            if (isLast) {
                setReason(*failure ? "sway refuses the shortcut: " + **failure : "");
            }
        });
    }
}

/// `onAnswer` is called once, when both edges are bound or one is refused.
void SwayBindings::bind(const sway::Trigger& trigger, const std::string& purpose,
                        std::function<void(std::optional<std::string> failure)> onAnswer) {
    const auto command = [&](bool isDown) {
        return verb(trigger) + ' ' + bindingOptions + (isDown ? " --no-repeat " : " --release ")
               + trigger.keys + ' ' + commandOf(purpose, isDown);
    };
    const auto first = std::make_shared<std::optional<std::string>>();
    send(MessageType::runCommand, command(/*isDown=*/true),
         [first](const std::string& answer) { *first = sway::failureOfCommand(answer); });
    send(MessageType::runCommand, command(/*isDown=*/false),
         [first, onAnswer = std::move(onAnswer)](const std::string& answer) {
             if (onAnswer) {
                 onAnswer(*first ? *first : sway::failureOfCommand(answer));
             }
         });
}

void SwayBindings::unbind(const sway::Trigger& trigger) {
    for (const auto* const edge : {" ", " --release "}) {
        send(MessageType::runCommand,
             "un" + verb(trigger) + ' ' + bindingOptions + edge + trigger.keys, {});
    }
}

void SwayBindings::send(MessageType type, const std::string& payload, OnAnswer onAnswer) {
    if (socket_) {
        unsent_ += sway::encode(type, payload);
        awaited_.push_back(std::move(onAnswer));
        write();
    }
}

void SwayBindings::write() {
    while (!unsent_.empty()) {
        const auto count = ::send(socket_.get(), unsent_.data(), unsent_.size(), MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            break; // full, or broken, which the next read detects
        }
        unsent_.erase(0, static_cast<std::size_t>(count));
    }
    writable_->setEnabled(!unsent_.empty() && errno == EAGAIN);
}

void SwayBindings::read() {
    std::array<char, 65536> buffer{};
    const auto count = ::recv(socket_.get(), buffer.data(), buffer.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
        return;
    }
    if (count <= 0) {
        lose("the connection to sway has ended");
        return;
    }
    reader_.append({buffer.data(), static_cast<std::size_t>(count)});
    while (const auto message = reader_.next()) {
        receive(*message);
    }
    if (reader_.isBroken()) {
        lose("sway sends what can't be understood");
    }
}

void SwayBindings::receive(const sway::Message& message) {
    switch (message.type) {
    case MessageType::bindingEvent:
        if (const auto command = sway::commandOfBinding(message.payload)) {
            receiveBinding(*command);
        }
        return;
    case MessageType::workspaceEvent:
        if (sway::isReload(message.payload)) {
            setReason("sway is reading its configuration");
            bound_.clear(); // sway has dropped them
            isEscapeBound_ = false;
            readConfiguration();
        }
        return;
    case MessageType::shutdownEvent:
        lose("sway ends");
        return;
    default:
        break;
    }
    if (!awaited_.empty()) {
        const auto onAnswer = std::move(awaited_.front());
        awaited_.pop_front();
        if (onAnswer) {
            onAnswer(message.payload);
        }
    }
}

void SwayBindings::receiveBinding(const std::string& command) {
    if (command == commandOf(shortcutPurpose, /*isDown=*/true)) {
        // Repeats are not reported. A press of a key that is already down means that its release
        // was lost, which happens when another key was pressed meanwhile.
        report(edges_.release());
        report(edges_.press());
    } else if (command == commandOf(shortcutPurpose, /*isDown=*/false)) {
        report(edges_.release());
    } else if (command == commandOf(escapePurpose, /*isDown=*/true)) {
        report(escapeEvent(/*isDown=*/true));
    } else if (command == commandOf(escapePurpose, /*isDown=*/false)) {
        report(escapeEvent(/*isDown=*/false));
    }
}

void SwayBindings::setReason(std::string reason) {
    if (reason != std::exchange(reason_, reason) && observer_.onChange) {
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (observer_.onChange) {
                    observer_.onChange();
                }
            },
            Qt::QueuedConnection);
    }
}

void SwayBindings::report(const std::optional<KeyEvent>& event) {
    if (event && observer_.onKey) {
        observer_.onKey(*event);
    }
}

void SwayBindings::lose(std::string reason) {
    if (!socket_) {
        return;
    }
    readable_->setEnabled(false);
    writable_->setEnabled(false);
    socket_ = FileDescriptor();
    bound_.clear();
    isEscapeBound_ = false;
    setReason(std::move(reason));
    report(edges_.release());
}

} // namespace orlune
