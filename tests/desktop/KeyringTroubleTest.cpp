// A key that cannot be stored: the windows say why, keep the entry, and store it once the keyring
// is back. Uses a separate bus, where nothing starts a keyring or asks for its password.
#include "tests/desktop/WindowUser.h"
#include "tests/support/KeyringSession.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

namespace orlune {
namespace {

namespace keycode = desktop::keycode;
using desktop::waitUntil;

/// Directs programs of another session bus to the accessibility bus of this one.
class WayToScreenReader final : public QDBusVirtualObject {
  public:
    WayToScreenReader(const std::string& sessionBus, const std::string& accessibilityBus)
        : bus_(QDBusConnection::connectToBus(QString::fromStdString(sessionBus), name)),
          address_(QString::fromStdString(accessibilityBus)) {
        bus_.registerVirtualObject(QStringLiteral("/org/a11y/bus"), this);
        EXPECT_TRUE(bus_.registerService(QStringLiteral("org.a11y.Bus")));
    }
    ~WayToScreenReader() override { QDBusConnection::disconnectFromBus(name); }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        const QVariant isEnabled = QVariant::fromValue(QDBusVariant(true));
        return connection.send(message.createReply(
            message.member() == u"GetAddress" ? QVariant(address_) : isEnabled));
    }
    QString introspect(const QString& /*path*/) const override { return {}; }

  private:
    static inline const auto name = QStringLiteral("beside");
    QDBusConnection bus_;
    QString address_;
};

class KeyringTrouble : public desktop::WindowUser {
  protected:
    KeyringTrouble() { environment["DBUS_SESSION_BUS_ADDRESS"] = session.busAddress(); }

    void expectRefusal(const char* reason, bool isContinueThere) {
        EXPECT_FALSE(reader.reads(reason));
        keyboard.tap({keycode::enter});
        EXPECT_TRUE(waitUntil([&] { return reader.reads(reason); })) << reason;
        if (isContinueThere) {
            EXPECT_FALSE(reader.await("Continue").isEnabled);
        }
    }
    /// The field must have the focus.
    void expectToGetOverIt(const char* saved, bool isContinueThere) {
        type("the-key");
        expectRefusal("No keyring answers on this desktop", isContinueThere);
        session.startKeyring("password");
        session.stopKeyring();
        session.startKeyring("another password");
        expectRefusal("locked", isContinueThere);
        session.stopKeyring();
        session.startKeyring("password");
        session.freezeKeyring();
        expectRefusal("did not answer within", isContinueThere);
        session.thawKeyring();
        EXPECT_EQ(storedKey(), "");
        keyboard.tap({keycode::enter});
        EXPECT_TRUE(reader.shows(saved));
        EXPECT_EQ(storedKey(), "the-key");
    }

    test::KeyringSession session;
    const WayToScreenReader way{session.busAddress(), reader.busAddress()};
};

TEST_F(KeyringTrouble, IsReportedOnTheFirstRun) {
    launch();
    click(reader, "Continue");
    ASSERT_TRUE(getsFocus("Deepgram API key"));
    expectToGetOverIt("Deepgram key saved securely", /*isContinueThere=*/true);
    EXPECT_TRUE(reader.await("Continue").isEnabled);
}

TEST_F(KeyringTrouble, IsReportedInTheSettings) {
    finishOnboarding();
    launch();
    click(reader, "Settings");
    ASSERT_TRUE(reader.shows("Required for transcription"));
    moveTo("Deepgram API Key");
    expectToGetOverIt("Key saved in Mac Keychain", /*isContinueThere=*/false);
}

} // namespace
} // namespace orlune
