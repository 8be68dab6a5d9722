#include "app/remote/RemoteControl.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <utility>

namespace orlune {

namespace {

constexpr auto introspection = R"(<interface name="org.freedesktop.Application">
  <method name="Activate"><arg type="a{sv}" name="platform_data" direction="in"/></method>
  <method name="Open"><arg type="as" name="uris" direction="in"/><arg type="a{sv}" name="platform_data" direction="in"/></method>
  <method name="ActivateAction"><arg type="s" name="action_name" direction="in"/><arg type="av" name="parameter" direction="in"/><arg type="a{sv}" name="platform_data" direction="in"/></method>
</interface>
<interface name="%1">
%2  <method name="Status"><arg type="s" name="json" direction="out"/></method>
  <method name="KeyChanged"/>
</interface>
)";

bool isCall(const QDBusMessage& message, const char* interface) {
    // On D-Bus the interface of a call is optional.
    return message.interface().isEmpty() || message.interface() == QLatin1String(interface);
}

bool isCall(const QDBusMessage& message, const char* interface, const char* method,
            const char* signature) {
    return isCall(message, interface) && message.member() == QLatin1String(method)
           && message.signature() == QLatin1String(signature);
}

} // namespace

class RemoteControl::Door final : public QDBusVirtualObject {
  public:
    explicit Door(Handlers handlers)
        : handlers_(std::move(handlers)), bus_(QDBusConnection::sessionBus()) {}
    ~Door() override {
        release();
        bus_.unregisterObject(QLatin1String(busPath));
    }

    Claim claim() {
        // The object is registered first, since another program may call as soon as it sees the
        // name.
        if (!bus_.isConnected() || !bus_.registerVirtualObject(QLatin1String(busPath), this)) {
            return Claim::noBus;
        }
        const auto reply = bus_.interface()->registerService(QLatin1String(busName));
        if (!reply.isValid()) {
            return Claim::noBus;
        }
        isOwner_ = reply.value() == QDBusConnectionInterface::ServiceRegistered;
        return isOwner_ ? Claim::granted : Claim::anotherRuns;
    }

    void release() {
        if (std::exchange(isOwner_, false)) {
            bus_.unregisterService(QLatin1String(busName));
        }
    }

    QString introspect(const QString&) const override {
        QString methods;
        for (const auto& entry : remoteRequests) {
            methods += QStringLiteral("  <method name=\"%1\"/>\n")
                           .arg(QString::fromStdString(busMethod(entry.request)));
        }
        return QString::fromLatin1(introspection).arg(QLatin1String(busInterface), methods);
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (isCall(message, busInterface, "Status", "")) {
            answer(message, connection, {QString::fromStdString(handlers_.status())});
            return true;
        }
        if (isCall(message, applicationInterface, "Activate", "a{sv}")) {
            handlers_.reopen();
        } else if (isCall(message, applicationInterface, "Open", "asa{sv}")) {
            // The program has no documents to open.
        } else if (isCall(message, busInterface, keyChangedMethod, "")) {
            handlers_.keyChanged();
        } else if (const auto request = requestIn(message)) {
            if (*request == RemoteRequest::quit) {
                release();
            }
            if (const auto refusal = handlers_.perform(*request)) {
                connection.send(message.createErrorReply(QLatin1String(refusalError),
                                                         QString::fromStdString(*refusal)));
                return true;
            }
        } else {
            return false; // the bus library answers with an unknown method error
        }
        answer(message, connection, {});
        return true;
    }

  private:
    static std::optional<RemoteRequest> requestIn(const QDBusMessage& message) {
        if (isCall(message, applicationInterface, "ActivateAction", "sava{sv}")) {
            return remoteRequestNamed(message.arguments().value(0).toString().toStdString());
        }
        if (!isCall(message, busInterface) || !message.signature().isEmpty()) {
            return std::nullopt;
        }
        return remoteRequestOfMethod(message.member().toStdString());
    }

    static void answer(const QDBusMessage& message, const QDBusConnection& connection,
                       const QVariantList& values) {
        if (message.isReplyRequired()) {
            connection.send(message.createReply(values));
        }
    }

    const Handlers handlers_;
    QDBusConnection bus_;
    bool isOwner_ = false;
};

RemoteControl::RemoteControl(Handlers handlers)
    : door_(std::make_unique<Door>(std::move(handlers))) {}

RemoteControl::~RemoteControl() = default;

RemoteControl::Claim RemoteControl::claim() {
    return door_->claim();
}

void RemoteControl::release() {
    door_->release();
}

} // namespace orlune
