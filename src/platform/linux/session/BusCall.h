// Asynchronous D-Bus queries. To be called on the thread of `receiver`, with Qt's loop running;
// answers arrive there, in a later turn, and only while `receiver` exists. Errors are not reported.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariant>

#include <functional>

namespace orlune {

void callBus(const QDBusConnection& bus, const QDBusMessage& call, QObject* receiver,
             std::function<void(const QDBusMessage& reply)> onReply);

struct BusProperty {
    QString service;
    QString path;
    QString interface;
    QString name;
};

/// Does not start a program to answer.
void readProperty(const QDBusConnection& bus, const BusProperty& property, QObject* receiver,
                  std::function<void(const QVariant& value)> onValue);

} // namespace orlune
