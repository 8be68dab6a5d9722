// The talk with the desktop's provider of secrets (GNOME Keyring, KWallet, KeePassXC, …) over its
// D-Bus interface. Owned by SecretServiceItems; everything but the constructor, the destructor and
// `prompts` runs on the given thread and may take as long as the provider or the person at
// the prompt does. The provider may come, go and come back at any time.
#pragma once

#include "platform/SecretItems.h"
#include "platform/linux/secrets/GlibThread.h"
#include "platform/linux/secrets/PromptWatch.h"

#include <functional>
#include <string>

namespace orlune {

class SecretServiceSession {
  public:
    /// `hasDisplay`: whether there is a screen on which a person can be asked at all.
    SecretServiceSession(GlibThread& thread, bool hasDisplay);

    SecretItems::Match copyMatching(const SecretItemQuery& query);
    /// Opens no prompt.
    SecretItems::Presence presence(const SecretItemQuery& query);
    /// Asks `isWanted` last before the item is made: unlocking may have taken minutes. When the
    /// provider did not say whether it made the item, the item is withdrawn before this returns.
    SecretStatus add(const SecretItemQuery& query, std::string_view data,
                     const std::function<bool()>& isWanted);
    SecretStatus remove(const SecretItemQuery& query);
    /// Removes what an add made that nobody waits for any more, as soon as the provider answers.
    void withdraw(const SecretItemQuery& query);

    /// Lets go of the provider; the next operation connects again. To be called before the end.
    void disconnect();

    /// Tells when a person is being asked for a password. From any thread.
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
    /// Like `search`, but looks again behind the lock of the default collection.
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
    std::string owner_; ///< which provider the session is with
};

} // namespace orlune
