#include "platform/linux/session/ScreenLock.h"

#include "tests/desktop/Desktop.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace orlune {
namespace {

using desktop::waitUntil;
using testing::ElementsAre;

const QString managerPath = QStringLiteral("/org/freedesktop/login1");
const QString sessionPath = QStringLiteral("/org/freedesktop/login1/session/_37");
const QString screenSaver = QStringLiteral("org.freedesktop.ScreenSaver");
const QString sessionInterface = QStringLiteral("org.freedesktop.login1.Session");

/// The bus library reads the addresses of all buses when one of them is first used. The toolkit
/// does so when it starts, so this must run before.
[[maybe_unused]] const bool isBoxTheSystem = [] {
    const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    return address && setenv("DBUS_SYSTEM_BUS_ADDRESS", address, /*overwrite=*/1) == 0;
}();

/// A session manager with one session; the session's bus stands in for the system bus.
class SessionManager final : public QDBusVirtualObject {
  public:
    SessionManager(const QDBusConnection& bus, bool isLocked) : bus_(bus), isLocked_(isLocked) {
        EXPECT_TRUE(bus_.registerVirtualObject(managerPath, this, QDBusConnection::SubPath));
        EXPECT_TRUE(bus_.registerService(QStringLiteral("org.freedesktop.login1")));
    }
    ~SessionManager() override {
        bus_.unregisterObject(managerPath, QDBusConnection::UnregisterTree);
        bus_.unregisterService(QStringLiteral("org.freedesktop.login1"));
    }

    void lock(bool isLocked) {
        isLocked_ = isLocked;
        auto signal = QDBusMessage::createSignal(sessionPath,
                                                 QStringLiteral("org.freedesktop.DBus.Properties"),
                                                 QStringLiteral("PropertiesChanged"));
        signal << sessionInterface << QVariantMap{{QStringLiteral("LockedHint"), isLocked}}
               << QStringList{};
        bus_.send(signal);
    }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        const auto arguments = message.arguments();
        if (message.member() == QStringLiteral("GetSession")
            && arguments.value(0) == QStringLiteral("7")) {
            return connection.send(
                message.createReply(QVariant::fromValue(QDBusObjectPath(sessionPath))));
        }
        const bool isOwn = message.path().endsWith(QStringLiteral("/session/auto"));
        if (message.member() != QStringLiteral("Get")
            || (!isOwn && message.path() != sessionPath)) {
            return false;
        }
        const auto value = arguments.value(1) == QStringLiteral("Id")
                               ? QVariant(QStringLiteral("7"))
                               : QVariant(isLocked_);
        return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(value))));
    }

  private:
    QDBusConnection bus_;
    bool isLocked_;
};

class ScreenLockTest : public testing::Test {
  protected:
    ~ScreenLockTest() override { QDBusConnection::disconnectFromBus(QStringLiteral("others")); }

    void blank(bool isBlank) {
        auto signal = QDBusMessage::createSignal(QStringLiteral("/ScreenSaver"), screenSaver,
                                                 QStringLiteral("ActiveChanged"));
        signal << isBlank;
        others.send(signal);
    }
    /// The lock listens once the bus has answered a later call.
    static void waitUntilListening() {
        QDBusConnection::sessionBus().call(QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")));
    }
    bool waitFor(std::size_t count) {
        return waitUntil([&] { return changes.size() >= count; });
    }

    /// One connection for all services, so that their signals keep their order.
    QDBusConnection others =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("others"));
    std::vector<bool> changes;
    ScreenLock::OnChange record = [this](bool isLocked) { changes.push_back(isLocked); };
};

TEST_F(ScreenLockTest, IsReportedBySessionManagerAndScreenSaverUntilBothUnlock) {
    SessionManager manager(others, /*isLocked=*/true);
    ScreenLock lock(record);
    waitUntilListening();
    EXPECT_TRUE(waitFor(1)) << "a screen that is locked already";
    blank(true);
    manager.lock(false);
    blank(false);
    EXPECT_TRUE(waitFor(2));
    manager.lock(true);
    EXPECT_TRUE(waitFor(3));
    EXPECT_THAT(changes, ElementsAre(true, false, true));
}

TEST_F(ScreenLockTest, IsReportedByTheScreenSaverWithoutASessionManager) {
    ScreenLock lock(record);
    waitUntilListening();
    blank(true);
    EXPECT_TRUE(waitFor(1));
    blank(false);
    EXPECT_TRUE(waitFor(2));
    EXPECT_THAT(changes, ElementsAre(true, false));
}

TEST_F(ScreenLockTest, AScreenSaverThatEndsCountsAsUnlocked) {
    ASSERT_TRUE(others.registerService(screenSaver));
    ScreenLock lock(record);
    waitUntilListening();
    blank(true);
    EXPECT_TRUE(waitFor(1));
    others.unregisterService(screenSaver);
    EXPECT_TRUE(waitFor(2));
    EXPECT_THAT(changes, ElementsAre(true, false));
}

} // namespace
} // namespace orlune
