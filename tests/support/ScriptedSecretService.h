// A provider of secrets for cases that no real one can produce on demand: a prompt that stays open
// until the test answers it, an add that is answered late, a refusal. It has one collection and at
// most one item. Its operations are safe from any thread; it answers on GLib's own D-Bus thread.
#pragma once

#include "platform/linux/secrets/GlibHandles.h"

#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

namespace orlune::test {

class ScriptedSecretService {
  public:
    explicit ScriptedSecretService(const std::string& busAddress);
    ~ScriptedSecretService();

    void lock();
    /// The user's answer to the prompt, after a moment for reading it.
    void answerPrompt(bool isUnlocked);
    void waitForPrompt();
    /// Simulates a crash of the provider during a prompt.
    void endAtPrompt();
    int promptCount() const;
    /// How often the program has dismissed a prompt.
    int dismissalCount() const;

    /// Refuses the next session with this text.
    void refuseNextSession(std::string text);
    /// From now on it is KeePassXC with a database that shares no group.
    void becomeKeePassXCThatSharesNothing();

    /// Refuses adds with this text from now on.
    void refuseAdds(std::string text);
    /// From now on adds are done at once but only answered when released.
    void holdAnswersToAdds();
    void releaseAnswersToAdds();

    bool hasItem() const;
    int addCount() const;

  private:
    static GDBusMessage* filter(GDBusConnection* connection, GDBusMessage* message,
                                gboolean isIncoming, gpointer self);
    void takeName(const char* name);
    GVariant* answer(GDBusMessage* message);
    GVariant* properties(const std::string& path) const;
    void reply(GDBusMessage* message, GVariant* body);
    void send(GDBusMessage* message);

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    GlibObject<GDBusConnection> connection_;
    bool isLocked_ = false;
    bool isPromptStanding_ = false;
    bool isHolding_ = false;
    bool hasCollection_ = true;
    int promptCount_ = 0;
    int dismissalCount_ = 0;
    std::string sessionRefusal_;
    int addCount_ = 0;
    std::string refusal_;
    std::vector<std::string> items_; ///< the data
    std::vector<GlibObject<GDBusMessage>> held_;
};

} // namespace orlune::test
