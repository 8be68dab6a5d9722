// The icon in a panel that comes up long after the program, as the panel sees it.

#include "tests/desktop/Desktop.h"
#include "tests/desktop/OwnProgram.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orlune {
namespace {

using desktop::OwnProgram;
using desktop::waitUntil;

/// What a panel with a tray offers to programs.
class Panel final : public QDBusVirtualObject {
  public:
    Panel() {
        auto bus = QDBusConnection::sessionBus();
        EXPECT_TRUE(bus.registerVirtualObject(QStringLiteral("/StatusNotifierWatcher"), this));
        EXPECT_TRUE(bus.registerService(QStringLiteral("org.kde.StatusNotifierWatcher")));
    }
    ~Panel() override {
        QDBusConnection::sessionBus().unregisterService(
            QStringLiteral("org.kde.StatusNotifierWatcher"));
    }

    QString introspect(const QString& /*path*/) const override {
        return QStringLiteral(R"(<interface name="org.kde.StatusNotifierWatcher">
            <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
            <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
            </interface>)");
    }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.member() == QStringLiteral("Introspect")) {
            return false; // answered by the library
        }
        if (message.member() == QStringLiteral("Get")) {
            bus.send(message.createReply(QVariant::fromValue(QDBusVariant(true))));
        } else {
            if (message.member() == QStringLiteral("RegisterStatusNotifierItem")) {
                item = message.service();
            }
            bus.send(message.createReply());
        }
        return true;
    }

    /// Who has registered an icon.
    QString item;
};

QDBusMessage ask(const QString& service, const char* path, const char* interface,
                 const char* method, const QVariantList& arguments) {
    auto call =
        QDBusMessage::createMethodCall(service, QString::fromLatin1(path),
                                       QString::fromLatin1(interface), QString::fromLatin1(method));
    call.setArguments(arguments);
    return QDBusConnection::sessionBus().call(call);
}

QVariant property(const QString& service, const char* name) {
    const auto reply =
        ask(service, "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
            {QStringLiteral("org.kde.StatusNotifierItem"), QString::fromLatin1(name)});
    return reply.arguments().value(0).value<QDBusVariant>().variant();
}

TEST(Tray, AppearsInAPanelThatComesLaterAndOpensTheWindow) {
    OwnProgram program({ORLUNE_PROGRAM, "--background"});
    ASSERT_TRUE(waitUntil([] { return OwnProgram({ORLUNE_PROGRAM, "status"}).exitCode() == 0; }));
    Panel panel;
    ASSERT_TRUE(waitUntil([&] { return !panel.item.isEmpty(); })) << program.standardError();
    EXPECT_EQ(property(panel.item, "Id").toString(), QStringLiteral("app.orlune.Orlune"));
    ask(panel.item, "/StatusNotifierItem", "org.kde.StatusNotifierItem", "Activate", {0, 0});
    EXPECT_TRUE(waitUntil([] { return desktop::focusedClass() == "app.orlune.Orlune"; }));
    EXPECT_EQ(OwnProgram({ORLUNE_PROGRAM, "quit"}).exitCode(), 0);
    EXPECT_EQ(program.exitCode(), 0);
}

} // namespace
} // namespace orlune
