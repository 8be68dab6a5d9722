// Secrets in the desktop's keyring, through libsecret. Used on the main thread; D-Bus is handled on
// its own thread "orlune-secrets", and each call waits for that thread within a time limit. A call
// that exceeds the limit returns `timedOut`: its unlock prompt stays open, so that a later call
// succeeds once the user has answered; a removal still happens then; an add never does. The
// commands of the terminal wait for an open prompt without limit.
#pragma once

#include "platform/SecretItems.h"
#include "platform/linux/secrets/SecretServiceSession.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace orlune {

class SecretServiceItems final : public SecretItems {
  public:
    /// A lookup takes 10 to 15 ms, or a second or two when the bus must start the provider first.
    /// This is also the longest time for which the windows freeze when a dictation begins.
    static constexpr std::chrono::milliseconds readBound{3000};
    /// Half of it: replacing a secret takes a removal and an add, which together must not take
    /// longer.
    static constexpr std::chrono::milliseconds changeBound{1500};

    struct Options {
        bool hasDisplay = true; ///< a screen for showing a prompt
        std::chrono::milliseconds readBound = SecretServiceItems::readBound;
        std::chrono::milliseconds changeBound = SecretServiceItems::changeBound;
        /// When set, no time limit applies while a prompt is open. Called once, when the wait for a
        /// prompt exceeds the limit, to inform the user.
        std::function<void()> onPrompt = {};
    };
    /// Has a display when the environment names one.
    static Options sessionOptions();

    explicit SecretServiceItems(Options options = sessionOptions());

    Match copyMatching(const SecretItemQuery& query) override;
    void checkPresence(const SecretItemQuery& query, PresenceHandler handler) override;
    /// Adds exactly once, or not at all when the answer is not success. When the keyring stores the
    /// item after the limit, it is removed as soon as the keyring answers, unless the program ends
    /// before.
    SecretStatus add(const SecretItemQuery& query, std::string_view data,
                     SecretAccessibility accessibility) override;
    SecretStatus remove(const SecretItemQuery& query) override;

  private:
    template <typename Call>
    auto wait(Call& call, std::chrono::milliseconds bound);
    SecretStatus timedOut(std::chrono::milliseconds bound) const;

    Options options_;
    std::optional<SecretServiceSession> session_;
    /// Declared last, so that it ends before its session.
    GlibThread thread_{"orlune-secrets", [this] { session_->disconnect(); }};
};

} // namespace orlune
