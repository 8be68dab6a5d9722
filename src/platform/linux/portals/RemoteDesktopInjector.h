// Posts keys through the RemoteDesktop portal. The user consents once, in a dialog of the desktop
// that only `requestAccess` opens. Where the portal can store the consent, each dictation opens its
// own session, so that the desktop shows its indicator only then. Elsewhere the user is asked at
// each start once a consent was given, and one session lasts until the program ends. Main thread,
// with Qt's loop running.
#pragma once

#include "platform/linux/paste/KeyInjector.h"
#include "platform/linux/portals/Portal.h"
#include "platform/linux/portals/TokenStore.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string>

namespace orlune {

class RemoteDesktopInjector final : public QObject, public KeyInjector {
  public:
    /// Stores the consent, in the program's state folder.
    static constexpr auto tokenFile = "remote-desktop-token";
    /// The time limit of a session that should need no dialog. A portal that exceeds it twice in a
    /// row opens one, and so has lost the consent; once may be a loaded machine.
    static constexpr std::chrono::seconds silentLimit{3};

    /// At the start of a session the desktop may not be able to show its dialog yet. It is asked
    /// again after these times, unless the user has answered.
    static constexpr std::array<std::chrono::milliseconds, 3> retryDelays{
        std::chrono::seconds(1), std::chrono::seconds(4), std::chrono::seconds(16)};

    /// Both must outlive the injector.
    RemoteDesktopInjector(Portal& portal, TokenStore& tokens);
    ~RemoteDesktopInjector() override;

    std::string name() const override { return "RemoteDesktop portal"; }
    void setOnChange(std::function<void()> onChange) override { onChange_ = std::move(onChange); }
    void prepare() override;
    void rest() override;
    void requestAccess() override;
    std::string reasonForUnavailability() const override;
    bool isReady() const override { return isOpen_; }
    bool press(KeyCode key) override { return notify(key, /*isDown=*/true); }
    bool release(KeyCode key) override { return notify(key, /*isDown=*/false); }

  private:
    enum class Way { silently, asking };

    void findOut();
    bool remembers() const;
    void open(Way way);
    void finish(const PortalResponse& response);
    void fail(std::string reason);
    void failForNow(std::string reason);
    Portal::OnResponse onResponse(void (RemoteDesktopInjector::*handler)(const PortalResponse&));
    void onSession(const PortalResponse& response);
    void onDevices(const PortalResponse& response);
    bool isStoredConsent() const;
    void close();
    bool notify(KeyCode key, bool isDown);
    void changed();

    Portal& portal_;
    TokenStore& tokens_;
    std::function<void()> onChange_;
    std::uint32_t version_ = 0; ///< 0 until the portal has answered
    std::string reason_;
    Way way_ = Way::silently;
    bool isWanted_ = false; ///< between `prepare` and `rest`
    /// The portal failed, not the user's will: the next dictation tries again.
    bool isRetryDue_ = false;
    std::size_t retryCount_ = 0;
    bool hasTimedOut_ = false; ///< the last silent session did
    bool isOpening_ = false;
    bool isOpen_ = false;
    std::unique_ptr<PortalSession> session_;
    /// Receives the responses while a session is opened. A response to an earlier attempt is
    /// ignored.
    std::unique_ptr<QObject> attempt_;
};

} // namespace orlune
