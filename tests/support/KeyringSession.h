// A separate session bus with GNOME Keyring, in temporary folders and without a display; it does
// not touch the user's session. Needs dbus-daemon and gnome-keyring-daemon; also works for root in
// a container. All its programs end with it.
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
    /// Starts only the bus. Throws when it does not start.
    KeyringSession();

    const std::string& busAddress() const { return address_; }

    /// Starts the provider and waits until it is on the bus. With a password, its login keyring is
    /// created, or unlocked if the password is right; without one there is no login keyring.
    void startKeyring(std::optional<std::string_view> password);
    void stopKeyring();
    /// Ends the bus, and the keyring with it, and starts another bus at the same address.
    void restartBus();
    /// Pauses the provider, whatever it is doing, and resumes it.
    void freezeKeyring() const;
    void thawKeyring() const;

    /// How many items the desktop's own tool finds for this account.
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
