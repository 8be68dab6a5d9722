#include "platform/linux/session/ScreenLock.h"

#include "platform/linux/session/BusCall.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>

#include <utility>

namespace orlune {

namespace {

const QString logind = QStringLiteral("org.freedesktop.login1");
const QString logindManagerPath = QStringLiteral("/org/freedesktop/login1");
/// Our session, or the user's graphical session when we run outside it as the user's service.
const QString ownSessionPath = QStringLiteral("/org/freedesktop/login1/session/auto");
const QString managerInterface = QStringLiteral("org.freedesktop.login1.Manager");
const QString sessionInterface = QStringLiteral("org.freedesktop.login1.Session");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString lockedHint = QStringLiteral("LockedHint");
const QString screenSaver = QStringLiteral("org.freedesktop.ScreenSaver");

} // namespace

ScreenLock::ScreenLock(OnChange onChange) : onChange_(std::move(onChange)) {
    followScreenSaver();
    // Signals come only from the session's own path, so its path is queried first. Without an
    // answer nothing is connected: logind does not run, or has no session of ours.
    readProperty(QDBusConnection::systemBus(),
                 {logind, ownSessionPath, sessionInterface, QStringLiteral("Id")}, this,
                 [this](const QVariant& id) { followSession(id.toString()); });
}

ScreenLock::~ScreenLock() = default;

void ScreenLock::onScreenSaver(bool isActive) {
    update(isSessionLocked_, isActive);
}

void ScreenLock::onProperties(const QString& interface, const QVariantMap& changed,
                              const QStringList&) {
    if (interface == sessionInterface && changed.contains(lockedHint)) {
        update(changed.value(lockedHint).toBool(), isScreenSaverActive_);
    }
}

void ScreenLock::followScreenSaver() {
    auto bus = QDBusConnection::sessionBus();
    bus.connect(QString(), QString(), screenSaver, QStringLiteral("ActiveChanged"), this,
                SLOT(onScreenSaver(bool)));
    auto* watcher = new QDBusServiceWatcher(screenSaver, bus,
                                            QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this,
            [this] { onScreenSaver(/*isActive=*/false); });
}

void ScreenLock::followSession(const QString& id) {
    auto call = QDBusMessage::createMethodCall(logind, logindManagerPath, managerInterface,
                                               QStringLiteral("GetSession"));
    call << id;
    callBus(QDBusConnection::systemBus(), call, this, [this](const QDBusMessage& reply) {
        if (!reply.arguments().isEmpty()) {
            followLock(reply.arguments().constFirst().value<QDBusObjectPath>().path());
        }
    });
}

void ScreenLock::followLock(const QString& path) {
    auto bus = QDBusConnection::systemBus();
    bus.connect(logind, path, propertiesInterface, QStringLiteral("PropertiesChanged"), this,
                SLOT(onProperties(QString, QVariantMap, QStringList)));
    readProperty(
        bus, {logind, path, sessionInterface, lockedHint}, this,
        [this](const QVariant& isLocked) { update(isLocked.toBool(), isScreenSaverActive_); });
}

void ScreenLock::update(bool isSessionLocked, bool isScreenSaverActive) {
    const bool wasLocked = isSessionLocked_ || isScreenSaverActive_;
    isSessionLocked_ = isSessionLocked;
    isScreenSaverActive_ = isScreenSaverActive;
    const bool isLocked = isSessionLocked_ || isScreenSaverActive_;
    if (isLocked != wasLocked) {
        onChange_(isLocked);
    }
}

} // namespace orlune
