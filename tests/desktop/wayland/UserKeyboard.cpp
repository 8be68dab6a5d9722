#include "tests/desktop/wayland/UserKeyboard.h"

#include "platform/linux/wayland/VirtualKeyboard.h"
#include "platform/linux/wayland/WaylandConnection.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>

#include <fake-input-client-protocol.h>
#include <stdexcept>

namespace orlune::desktop {

namespace {

/// KWin, which grants this to everybody when its permission checks are off.
class FakeInput final : public UserKeyboard {
  public:
    static constexpr auto interface = "org_kde_kwin_fake_input";

    explicit FakeInput(std::unique_ptr<WaylandConnection> connection)
        : connection_(std::move(connection)),
          input_(static_cast<org_kde_kwin_fake_input*>(
              connection_->bind(org_kde_kwin_fake_input_interface, version))) {
        if (!input_) {
            throw std::runtime_error("KWin's fake input is too old to have keys");
        }
        org_kde_kwin_fake_input_authenticate(input_, "orlune tests", "the keyboard of a test");
    }
    ~FakeInput() override {
        org_kde_kwin_fake_input_destroy(input_);
        connection_->flush();
    }

  private:
    static constexpr std::uint32_t version = ORG_KDE_KWIN_FAKE_INPUT_KEYBOARD_KEY_SINCE_VERSION;

    void send(Key key, bool isDown) override {
        org_kde_kwin_fake_input_keyboard_key(
            input_, key, isDown ? WL_KEYBOARD_KEY_STATE_PRESSED : WL_KEYBOARD_KEY_STATE_RELEASED);
        connection_->flush();
    }

    std::unique_ptr<WaylandConnection> connection_;
    org_kde_kwin_fake_input* input_;
};

/// GNOME Shell, which grants this to everybody on the session's bus.
class MutterRemoteDesktop final : public UserKeyboard {
  public:
    static constexpr auto service = "org.gnome.Mutter.RemoteDesktop";

    MutterRemoteDesktop() {
        const auto answer = call("/org/gnome/Mutter/RemoteDesktop", service, "CreateSession", {});
        session_ = answer.arguments().constFirst().value<QDBusObjectPath>().path();
        callSession("Start");
        // The device comes with its first key, which programs may miss.
        tap({key::leftShift});
    }
    ~MutterRemoteDesktop() override {
        QDBusConnection::sessionBus().call(
            QDBusMessage::createMethodCall(service, session_, sessionInterface, "Stop"));
    }

  private:
    static constexpr auto sessionInterface = "org.gnome.Mutter.RemoteDesktop.Session";

    // Qt 6.4 leaks what QDBusInterface learns about an interface.
    static QDBusMessage call(const QString& path, const char* interface, const char* method,
                             const QVariantList& arguments) {
        auto message = QDBusMessage::createMethodCall(service, path, interface, method);
        message.setArguments(arguments);
        auto answer = QDBusConnection::sessionBus().call(message);
        if (answer.type() != QDBusMessage::ReplyMessage) {
            throw std::runtime_error(answer.errorMessage().toStdString());
        }
        return answer;
    }
    void callSession(const char* method, const QVariantList& arguments = {}) const {
        call(session_, sessionInterface, method, arguments);
    }
    void send(Key key, bool isDown) override {
        callSession("NotifyKeyboardKeycode", {uint{key}, isDown});
    }

    QString session_;
};

/// sway and its family.
class WlrootsKeyboard final : public UserKeyboard {
  public:
    explicit WlrootsKeyboard(std::unique_ptr<WaylandConnection> connection)
        : connection_(std::move(connection)), keyboard_(VirtualKeyboard::open(*connection_)) {
        if (!keyboard_) {
            throw std::runtime_error("the compositor offers no way to press keys");
        }
    }

  private:
    void send(Key key, bool isDown) override {
        const bool isSent = isDown ? keyboard_->press(key) : keyboard_->release(key);
        if (!isSent) {
            throw std::runtime_error("the compositor takes no keys");
        }
    }

    std::unique_ptr<WaylandConnection> connection_;
    std::unique_ptr<VirtualKeyboard> keyboard_;
};

} // namespace

std::unique_ptr<UserKeyboard> UserKeyboard::open() {
    auto connection = WaylandConnection::open();
    if (!connection) {
        throw std::runtime_error("no Wayland compositor answers");
    }
    if (connection->offers(FakeInput::interface)) {
        return std::make_unique<FakeInput>(std::move(connection));
    }
    const auto* const bus = QDBusConnection::sessionBus().interface();
    if (bus && bus->isServiceRegistered(MutterRemoteDesktop::service)) {
        return std::make_unique<MutterRemoteDesktop>();
    }
    return std::make_unique<WlrootsKeyboard>(std::move(connection));
}

void UserKeyboard::press(Key key) {
    send(key, /*isDown=*/true);
}

void UserKeyboard::release(Key key) {
    send(key, /*isDown=*/false);
}

void UserKeyboard::tap(const std::vector<Key>& keys) {
    for (const auto key : keys) {
        press(key);
    }
    for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
        release(*key);
    }
}

} // namespace orlune::desktop
