// Presses keys through the RemoteDesktop portal. The user consents once, in a dialog of the desktop
// that only `requestAccess` opens. Where the portal can remember that, a session is opened for each
// dictation, so that the desktop shows its sign only then; where it cannot, the
// user is asked at each start once there has been a consent, and one session lasts until the
// program ends. Main thread, with Qt's loop running.
#pragma once

#include "platform/linux/paste/KeyInjector.h"
#include "platform/linux/portals/Portal.h"
#include "platform/linux/portals/TokenStore.h"

#include <memory>
#include <string>

namespace orlune {

class RemoteDesktopInjector final : public QObject, public KeyInjector {
  public:
    /// What remembers the consent, in the program's state folder.
    static constexpr auto tokenFile = "remote-desktop-token";
    /// How long a session may take that needs no dialog. A portal that opens one all the same has
    /// forgotten the consent.
    static constexpr std::chrono::seconds silentLimit{3};

    /// Both outlive the injector.
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
    void selectKeyboard();
    void start();
    void finish(const PortalResponse& response);
    void fail(std::string reason);
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
    bool isOpening_ = false;
    bool isOpen_ = false;
    std::unique_ptr<PortalSession> session_;
    std::unique_ptr<QObject> attempt_; ///< receives the responses of what is being opened
};

} // namespace orlune
