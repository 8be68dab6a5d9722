// Secrets in the desktop's keyring, through libsecret. Used on one thread, the main one; the talk
// over D-Bus happens on a thread of its own, "orlune-secrets", and each call waits for it within a
// bound. What comes later than the bound is `timedOut`: an unlock prompt stays where it is, so that
// a later call succeeds once it is answered; a removal still happens then; an add never does. The
// commands of the terminal wait at a prompt for as long as it stands.
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
    /// A lookup takes 10 to 15 ms; a provider that the bus must start first, a second or two. It
    /// is also how long the windows stand still at worst when a dictation begins.
    static constexpr std::chrono::milliseconds readBound{3000};
    /// Half of it: replacing a secret is a removal and an add, and must not take longer either.
    static constexpr std::chrono::milliseconds changeBound{1500};

    struct Options {
        bool hasDisplay = true; ///< a screen on which a person can be asked
        std::chrono::milliseconds readBound = SecretServiceItems::readBound;
        std::chrono::milliseconds changeBound = SecretServiceItems::changeBound;
        /// Where it is set, no bound counts while a prompt stands; called once when one is waited
        /// for longer than the bound, to tell the person.
        std::function<void()> onPrompt = {};
    };
    /// With a screen when the environment names one.
    static Options sessionOptions();

    explicit SecretServiceItems(Options options = sessionOptions());

    Match copyMatching(const SecretItemQuery& query) override;
    void checkPresence(const SecretItemQuery& query, PresenceHandler handler) override;
    /// Exactly once, or not at all when the answer is not success: what the keyring stored after
    /// the bound is withdrawn again as soon as it answers, unless the program ends before.
    SecretStatus add(const SecretItemQuery& query, std::string_view data,
                     SecretAccessibility accessibility) override;
    SecretStatus remove(const SecretItemQuery& query) override;

  private:
    template <typename Call>
    auto wait(Call& call, std::chrono::milliseconds bound);
    SecretStatus timedOut(std::chrono::milliseconds bound) const;

    Options options_;
    std::optional<SecretServiceSession> session_;
    /// Ends before the session that it works on.
    GlibThread thread_{"orlune-secrets", [this] { session_->disconnect(); }};
};

} // namespace orlune
