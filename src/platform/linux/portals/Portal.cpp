#include "platform/linux/portals/Portal.h"

#include "platform/Platform.h"
#include "platform/linux/portals/PortalRequest.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <atomic>
#include <utility>

namespace orlune {

namespace {

const QString sessionInterface = QStringLiteral("org.freedesktop.portal.Session");

/// QtDBus identifies connections by name.
QString newConnectionName() {
    static std::atomic<int> count = 0;
    return QStringLiteral("orlune-portal-%1").arg(++count);
}

bool canBeReached(const QDBusConnection& connection) {
    auto* const bus = connection.interface();
    return bus
           && (bus->isServiceRegistered(portalName)
               || bus->activatableServiceNames().value().contains(portalName));
}

} // namespace

std::unique_ptr<Portal> Portal::open(const QString& busAddress) {
    const auto name = newConnectionName();
    auto connection = busAddress.isEmpty()
                          ? QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)
                          : QDBusConnection::connectToBus(busAddress, name);
    if (!connection.isConnected() || !canBeReached(connection)) {
        QDBusConnection::disconnectFromBus(name);
        return nullptr;
    }
    return std::unique_ptr<Portal>(new Portal(std::move(connection)));
}

Portal::Portal(QDBusConnection connection)
    : connection_(std::move(connection)),
      owner_(new QDBusServiceWatcher(portalName, connection_,
                                     QDBusServiceWatcher::WatchForOwnerChange, this)) {
    connect(owner_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString& before, const QString& after) {
                if (!before.isEmpty()) {
                    unsent_.clear();
                    Q_EMIT lost();
                }
                if (!after.isEmpty()) {
                    registerApplication();
                    Q_EMIT found();
                }
            });
    registerApplication();
}

Portal::~Portal() {
    for (const auto& call : unsent_) {
        connection_.send(call); // there is no later; keys that come up do so in any order
    }
    QDBusConnection::disconnectFromBus(connection_.name());
}

/// Portals store consent per program, and identify an unpackaged program only by this registration.
/// The answer does not matter: older portals have no registry, and newer versions of Qt have
/// registered already.
void Portal::registerApplication() {
    auto call = QDBusMessage::createMethodCall(
        portalName, portalPath, QStringLiteral("org.freedesktop.host.portal.Registry"),
        QStringLiteral("Register"));
    call << QString::fromLatin1(bundleIdentifier) << QVariantMap();
    connection_.asyncCall(call);
}

void Portal::readNumber(const QString& interface, const QString& property,
                        std::function<void(std::optional<std::uint32_t>)> onNumber) {
    auto call = QDBusMessage::createMethodCall(portalName, portalPath,
                                               QStringLiteral("org.freedesktop.DBus.Properties"),
                                               QStringLiteral("Get"));
    call << interface << property;
    auto* watcher = new QDBusPendingCallWatcher(connection_.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [watcher, onNumber = std::move(onNumber)] {
                const auto reply = watcher->reply();
                watcher->deleteLater();
                bool isNumber = false;
                const auto number =
                    reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty()
                        ? reply.arguments().constFirst().value<QDBusVariant>().variant().toUInt(
                              &isNumber)
                        : 0;
                onNumber(isNumber ? std::optional<std::uint32_t>(number) : std::nullopt);
            });
}

void Portal::request(const QString& interface, const QString& method, QVariantList arguments,
                     QVariantMap options, std::optional<std::chrono::milliseconds> limit,
                     QObject* receiver, OnResponse onResponse) {
    const auto token = makeToken();
    options.insert(QStringLiteral("handle_token"), token);
    auto call = QDBusMessage::createMethodCall(portalName, portalPath, interface, method);
    arguments << QVariant(options);
    call.setArguments(arguments);
    new PortalRequest(*this, call, token, limit, receiver, std::move(onResponse));
}

void Portal::send(const QString& interface, const QString& method, const QVariantList& arguments) {
    auto call = QDBusMessage::createMethodCall(portalName, portalPath, interface, method);
    call.setArguments(arguments);
    send(call);
}

void Portal::send(const QDBusMessage& call) {
    unsent_.push_back(call);
    sendNext();
}

void Portal::sendNext() {
    if (isSending_ || unsent_.empty()) {
        return;
    }
    isSending_ = true;
    auto* watcher = new QDBusPendingCallWatcher(connection_.asyncCall(unsent_.front()), this);
    unsent_.pop_front();
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        isSending_ = false;
        sendNext();
    });
}

QString Portal::makeToken() {
    return QStringLiteral("orlune%1").arg(++tokens_);
}

PortalSession::PortalSession(Portal& portal, QDBusObjectPath path, QObject* parent)
    : QObject(parent), portal_(portal), path_(std::move(path)) {
    // From any sender: with a named sender, Qt would block until the bus answers.
    auto& bus = portal_.connection();
    bus.connect(QString(), path_.path(), sessionInterface, QStringLiteral("Closed"), this,
                SLOT(onClosed(QVariantMap)));
    bus.connect(QString(), path_.path(), sessionInterface, QStringLiteral("Closed"), this,
                SLOT(onClosed()));
    connect(&portal_, &Portal::lost, this, [this] { onClosed(); });
}

PortalSession::~PortalSession() {
    close();
}

void PortalSession::close() {
    if (std::exchange(isOpen_, false)) {
        portal_.send(QDBusMessage::createMethodCall(portalName, path_.path(), sessionInterface,
                                                    QStringLiteral("Close")));
    }
}

void PortalSession::onClosed(const QVariantMap& /*details*/) {
    onClosed();
}

void PortalSession::onClosed() {
    if (std::exchange(isOpen_, false)) {
        Q_EMIT closed();
    }
}

} // namespace orlune
