// The shortcut in a sway session: bindings that are made over sway's socket and report press and
// release. They exist as long as the socket, and are made again when the configuration is reloaded.
// A key that the user's configuration already binds is not taken; the reason says so.
#pragma once

#include "platform/linux/keys/ShortcutEdges.h"
#include "platform/linux/keys/ShortcutSource.h"
#include "platform/linux/runtime/FileDescriptor.h"
#include "platform/linux/shortcuts/SwayKeys.h"
#include "platform/linux/shortcuts/SwayMessages.h"

#include <QObject>

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class QSocketNotifier;

namespace orlune {

/// SWAYSOCK of the environment; empty outside a sway session.
std::string swaySocket();

class SwayBindings final : public QObject, public ShortcutSource {
  public:
    /// Whether a server listens on this socket.
    static bool isThere(const std::string& socketPath);
    /// Null when no server listens on this socket. `functionKey` is the symbol of the key that
    /// stands in for Fn, such as "Control_R".
    static std::unique_ptr<SwayBindings> open(const std::string& socketPath,
                                              std::string functionKey);
    ~SwayBindings() override;

    std::string name() const override { return "sway"; }
    void setObserver(Observer observer) override { observer_ = std::move(observer); }
    void watch(const KeyCombination& shortcut) override;
    void watchEscape(bool isWanted) override;
    void requestAccess() override {}
    std::string reasonForUnavailability() const override { return reason_; }
    bool reportsReleases() const override { return true; }
    void releaseAll() override;

  private:
    using OnAnswer = std::function<void(const std::string& payload)>;

    SwayBindings(FileDescriptor socket, std::string functionKey);
    void send(sway::MessageType type, const std::string& payload, OnAnswer onAnswer);
    void write();
    void read();
    void receive(const sway::Message& message);
    void receiveBinding(const std::string& command);
    void readConfiguration();
    void bindAll();
    void bind(const sway::Trigger& trigger, const std::string& purpose,
              std::function<void(std::optional<std::string> failure)> onAnswer);
    void unbind(const sway::Trigger& trigger);
    void setReason(std::string reason);
    void report(const std::optional<KeyEvent>& event);
    void lose(std::string reason);

    FileDescriptor socket_;
    std::string functionKey_;
    Observer observer_;
    std::string reason_ = "sway has not answered yet";
    ShortcutEdges edges_;
    bool watchesShortcut_ = false;
    bool watchesEscape_ = false;
    bool isConfigurationKnown_ = false;
    std::string configuration_;
    std::vector<sway::Trigger> bound_;
    bool isEscapeBound_ = false;

    sway::MessageReader reader_;
    std::string unsent_;
    std::deque<OnAnswer> awaited_; ///< answers arrive in the order of the questions
    std::unique_ptr<QSocketNotifier> readable_;
    std::unique_ptr<QSocketNotifier> writable_;
};

} // namespace orlune
