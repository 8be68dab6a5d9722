// The session with the desktop's provider of secrets (GNOME Keyring, KWallet, KeePassXC, …) over
// its D-Bus interface. Owned by SecretServiceItems. Everything except the constructor, the
// destructor and `prompts` runs on the given thread and may take as long as the provider or the
// user at the prompt. The provider may start, end and restart at any time.
#pragma once

#include "platform/SecretItems.h"
#include "platform/linux/secrets/GlibThread.h"
#include "platform/linux/secrets/PromptWatch.h"

#include <functional>
#include <string>

namespace orlune {

class SecretServiceSession {
  public:
    /// `hasDisplay`: whether there is a screen for showing a prompt.
    SecretServiceSession(GlibThread& thread, bool hasDisplay);

    SecretItems::Match copyMatching(const SecretItemQuery& query);
    /// Opens no prompt.
    SecretItems::Presence presence(const SecretItemQuery& query);
    /// Calls `isWanted` just before the item is made, because unlocking may have taken minutes.
    /// When the provider did not say whether it made the item, the item is removed before this
    /// returns.
    SecretStatus add(const SecretItemQuery& query, std::string_view data,
                     const std::function<bool()>& isWanted);
    SecretStatus remove(const SecretItemQuery& query);
    /// Removes the item of an add whose caller has given up, as soon as the provider answers.
    void withdraw(const SecretItemQuery& query);

    /// Releases the provider; the next operation connects again. Must be called before destruction.
    void disconnect();

    /// Reports whether a password prompt is open. From any thread.
    const PromptWatch& prompts() const { return prompts_; }

  private:
    using Items = std::vector<GlibObject<SecretItem>>;
    using Collection = GlibObject<SecretCollection>;

    template <typename Operation>
    SecretStatus guarded(Operation operation);
    template <typename Start>
    GlibObject<GAsyncResult> await(Start start);

    void connect();
    void connectToBus();
    Items search(const SecretItemQuery& query);
    /// Like `search`, but unlocks the default collection and searches again if nothing was found.
    Items searchUnlocked(const SecretItemQuery& query);
    Collection defaultCollection();
    Collection createDefaultCollection();
    bool isKeePassXC();
    SecretValueHandle secretOf(SecretItem* item);
    void unlock(GDBusProxy* object);
    void unlock(SecretItem* item);
    void unlock(SecretCollection* collection);
    SecretStatus dismissedPrompt(std::chrono::steady_clock::time_point asked) const;

    GlibThread& thread_;
    bool hasDisplay_;
    PromptWatch prompts_;
    GlibObject<GDBusConnection> bus_;
    GlibObject<SecretService> service_;
    std::string owner_; ///< the provider's unique bus name for this session
};

} // namespace orlune
