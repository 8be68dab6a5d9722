#include "tests/support/ScriptedPortal.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QList>

#include <stdexcept>
#include <utility>

namespace orlune::test {

/// One shortcut of a BindShortcuts call, and of its answer.
struct ScriptedShortcut {
    QString id;
    QVariantMap properties;
};

QDBusArgument& operator<<(QDBusArgument& argument, const ScriptedShortcut& shortcut) {
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, ScriptedShortcut& shortcut) {
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument; // NOLINT(bugprone-return-const-ref-from-parameter): as QtDBus wants it
}

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString root = QStringLiteral("/org/freedesktop/portal/desktop");
const QString connectionName = QStringLiteral("scripted-portal");

QVariantMap optionsOf(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    return arguments.isEmpty() ? QVariantMap() : qdbus_cast<QVariantMap>(arguments.constLast());
}

QList<ScriptedShortcut> shortcutsOf(const QDBusMessage& message) {
    return qdbus_cast<QList<ScriptedShortcut>>(message.arguments().at(1));
}

QString handle(const char* kind, const QDBusMessage& message, const QString& token) {
    auto sender = message.service().mid(1);
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    return root + QLatin1Char('/') + QLatin1String(kind) + QLatin1Char('/') + sender
           + QLatin1Char('/') + token;
}

} // namespace

ScriptedPortal::ScriptedPortal(const std::string& busAddress, std::uint32_t version)
    : bus_(QDBusConnection::connectToBus(QString::fromStdString(busAddress), connectionName)),
      version_(version) {
    qDBusRegisterMetaType<ScriptedShortcut>();
    qDBusRegisterMetaType<QList<ScriptedShortcut>>();
    if (!bus_.registerVirtualObject(root, this, QDBusConnection::SubPath)
        || !bus_.registerService(service)) {
        throw std::runtime_error("the scripted portal is not on the bus");
    }
}

ScriptedPortal::~ScriptedPortal() {
    bus_.unregisterObject(root);
    bus_.unregisterService(service);
    QDBusConnection::disconnectFromBus(connectionName);
}

void ScriptedPortal::closeSession() {
    auto closed = QDBusMessage::createSignal(
        session_, QStringLiteral("org.freedesktop.portal.Session"), QStringLiteral("Closed"));
    closed << QVariantMap();
    bus_.send(closed);
}

void ScriptedPortal::report(const QString& signal, const QString& shortcut) {
    auto report = QDBusMessage::createSignal(
        root, QStringLiteral("org.freedesktop.portal.GlobalShortcuts"), signal);
    report << QVariant::fromValue(QDBusObjectPath(session_)) << shortcut << qulonglong(0)
           << QVariantMap();
    bus_.send(report);
}

bool ScriptedPortal::handleMessage(const QDBusMessage& message,
                                   const QDBusConnection& /*connection*/) {
    const auto member = message.member().toStdString();
    if (member == "Get") {
        bus_.send(message.createReply(QVariant::fromValue(QDBusVariant(version_))));
        return true;
    }
    if (member == "Register") {
        return false;
    }
    std::string call = member;
    if (member == "NotifyKeyboardKeycode") {
        const auto arguments = message.arguments();
        call =
            (arguments.at(3).toUInt() == 1 ? "+" : "-") + std::to_string(arguments.at(2).toInt());
    }
    if (message.interface().endsWith(QLatin1String(".Request"))) {
        call += " request";
    }
    const auto options = optionsOf(message);
    for (const auto* option : {"persist_mode", "restore_token"}) {
        const auto value = options.value(QLatin1String(option));
        if (value.isValid()) {
            call += std::string(" ") + option + '=' + value.toString().toStdString();
        }
    }
    if (member == "BindShortcuts") {
        for (const auto& shortcut : shortcutsOf(message)) {
            const auto keys = shortcut.properties.value(QStringLiteral("preferred_trigger"));
            call += ' ' + shortcut.id.toStdString()
                    + (keys.isValid() ? '=' + keys.toString().toStdString() : "");
        }
    }
    calls_.push_back(std::move(call));
    if (options.contains(QStringLiteral("handle_token"))) {
        answerRequest(message);
    } else {
        bus_.send(message.createReply());
    }
    return true;
}

void ScriptedPortal::answerRequest(const QDBusMessage& message) {
    const auto method = message.member().toStdString();
    const auto options = optionsOf(message);
    const auto answer = std::exchange(answers_[method], Answer::granted);
    if (answer == Answer::error) {
        bus_.send(message.createErrorReply(QDBusError::Failed, QStringLiteral("scripted")));
        return;
    }
    const auto path =
        handle("request", message, options.value(QStringLiteral("handle_token")).toString());
    bus_.send(message.createReply(QVariant::fromValue(QDBusObjectPath(path))));
    if (answer == Answer::none) {
        return;
    }
    if (answer == Answer::closedSession) {
        closeSession();
        return;
    }
    QVariantMap results;
    if (answer == Answer::granted && method == "CreateSession") {
        session_ = handle("session", message,
                          options.value(QStringLiteral("session_handle_token")).toString());
        results.insert(QStringLiteral("session_handle"), session_);
    }
    if (answer == Answer::granted && method == "Start" && !token_.empty()) {
        results.insert(QStringLiteral("restore_token"), QString::fromStdString(token_));
    }
    if (answer != Answer::refused && method == "BindShortcuts") {
        results.insert(QStringLiteral("shortcuts"), QVariant::fromValue(shortcutsOf(message)));
    }
    auto response = QDBusMessage::createSignal(
        path, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
    response << static_cast<uint>(answer) << results;
    bus_.send(response);
}

} // namespace orlune::test
