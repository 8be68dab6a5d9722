#include "platform/linux/session/BusCall.h"

#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

#include <utility>

namespace orlune {

void callBus(const QDBusConnection& bus, const QDBusMessage& call, QObject* receiver,
             std::function<void(const QDBusMessage& reply)> onReply) {
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), receiver);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, receiver,
                     [watcher, onReply = std::move(onReply)] {
                         const auto reply = watcher->reply();
                         watcher->deleteLater();
                         if (reply.type() == QDBusMessage::ReplyMessage) {
                             onReply(reply);
                         }
                     });
}

void readProperty(const QDBusConnection& bus, const BusProperty& property, QObject* receiver,
                  std::function<void(const QVariant& value)> onValue) {
    auto call = QDBusMessage::createMethodCall(property.service, property.path,
                                               QStringLiteral("org.freedesktop.DBus.Properties"),
                                               QStringLiteral("Get"));
    call << property.interface << property.name;
    call.setAutoStartService(false);
    callBus(bus, call, receiver, [onValue = std::move(onValue)](const QDBusMessage& reply) {
        if (!reply.arguments().isEmpty()) {
            onValue(reply.arguments().constFirst().value<QDBusVariant>().variant());
        }
    });
}

} // namespace orlune
