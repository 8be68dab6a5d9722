#include "platform/linux/session/PortalSettings.h"

#include "platform/linux/session/BusCall.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QMap>

#include <utility>

namespace orlune {

namespace {

const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");

} // namespace

PortalSettings::PortalSettings(QStringList groups, OnValue onValue)
    : groups_(std::move(groups)), onValue_(std::move(onValue)) {
    // QtDBus looks the slot's types up by name, and sometimes registers this one too late.
    qRegisterMetaType<QDBusVariant>();
    auto bus = QDBusConnection::sessionBus();
    // From any sender: with a named sender, Qt would block until the bus answers.
    bus.connect(QString(), portalPath, settingsInterface, QStringLiteral("SettingChanged"), this,
                SLOT(onSettingChanged(QString, QString, QDBusVariant)));
    auto* watcher =
        new QDBusServiceWatcher(portal, bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, [this] { ask(); });
    ask();
}

PortalSettings::~PortalSettings() = default;

void PortalSettings::onSettingChanged(const QString& group, const QString& key,
                                      const QDBusVariant& value) {
    if (groups_.contains(group)) {
        tell(group, key, value.variant());
    }
}

void PortalSettings::ask() {
    auto call = QDBusMessage::createMethodCall(portal, portalPath, settingsInterface,
                                               QStringLiteral("ReadAll"));
    call << groups_;
    callBus(QDBusConnection::sessionBus(), call, this, [this](const QDBusMessage& reply) {
        if (reply.signature() != "a{sa{sv}}") {
            return;
        }
        QMap<QString, QVariantMap> values;
        reply.arguments().constFirst().value<QDBusArgument>() >> values;
        for (auto group = values.cbegin(); group != values.cend(); ++group) {
            for (auto value = group->cbegin(); value != group->cend(); ++value) {
                tell(group.key(), value.key(), value.value());
            }
        }
    });
}

void PortalSettings::tell(const QString& group, const QString& key, QVariant value) {
    // Some portals wrap a value several times.
    while (value.userType() == qMetaTypeId<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    onValue_(group, key, value);
}

} // namespace orlune
