// A session bus of its own with GNOME Keyring on it, in folders of its own and without a display:
// nothing of the user's session is touched. Needs dbus-daemon and gnome-keyring-daemon; works for
// root in a container too. Everything it started ends with it.
#pragma once

#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlune::test {

class KeyringSession {
  public:
    /// Starts the bus alone. Throws when it does not come up.
    KeyringSession();

    const std::string& busAddress() const { return address_; }

    /// Starts the provider and waits until it is on the bus. With a password its login keyring is
    /// made, or opened if it is the right one; without one there is none.
    void startKeyring(std::optional<std::string_view> password);
    void stopKeyring();
    /// Ends the bus, the keyring with it, and starts another bus at the same address.
    void restartBus();
    /// Stops the provider in the middle of whatever it does, and lets it go on.
    void freezeKeyring() const;
    void thawKeyring() const;

    /// How many items have this account, as the desktop's own tool sees it.
    int countItems(std::string_view account) const;

  private:
    std::vector<std::string> environment() const;
    void startBus();
    bool hasOwner() const;

    TemporaryFolder folder_;
    std::string address_;
    ChildProcess bus_;
    ChildProcess keyring_;
};

} // namespace orlune::test
