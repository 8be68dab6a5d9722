#include "platform/linux/portals/PortalRequest.h"

#include <QDBusPendingCallWatcher>
#include <QTimer>

#include <utility>

namespace orlune {

namespace {

const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");

/// The path of the request with this token. The response may arrive before the call's answer, so
/// the signal is connected before the call.
QString expectedPath(const QDBusConnection& connection, const QString& token) {
    auto sender = connection.baseService().mid(1);
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    return QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2").arg(sender, token);
}

} // namespace

PortalRequest::PortalRequest(Portal& portal, const QDBusMessage& call, const QString& token,
                             std::optional<std::chrono::milliseconds> limit, QObject* receiver,
                             Portal::OnResponse onResponse)
    : QObject(receiver), connection_(portal.connection()), onResponse_(std::move(onResponse)) {
    connect(&portal, &Portal::lost, this, [this] {
        isStanding_ = false;
        finish(PortalResponse::Code::failed);
    });
    listen(expectedPath(connection_, token));
    if (limit) {
        limit_ = std::make_unique<QTimer>();
        limit_->setSingleShot(true);
        connect(limit_.get(), &QTimer::timeout, this,
                [this] { finish(PortalResponse::Code::timedOut); });
        limit_->start(*limit);
    }
    auto* watcher = new QDBusPendingCallWatcher(connection_.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const auto reply = watcher->reply();
        if (reply.type() != QDBusMessage::ReplyMessage) {
            isStanding_ = false;
            finish(PortalResponse::Code::failed);
            return;
        }
        // Portals before 0.9 choose a different path.
        const auto path = reply.arguments().value(0).value<QDBusObjectPath>().path();
        if (!path.isEmpty() && path != path_) {
            listen(path);
        }
    });
}

PortalRequest::~PortalRequest() {
    if (isStanding_) {
        connection_.send(QDBusMessage::createMethodCall(portalName, path_, requestInterface,
                                                        QStringLiteral("Close")));
    }
}

void PortalRequest::listen(const QString& path) {
    path_ = path;
    connection_.connect(QString(), path_, requestInterface, QStringLiteral("Response"), this,
                        SLOT(onResponse(uint, QVariantMap)));
}

void PortalRequest::onResponse(uint code, const QVariantMap& results) {
    isStanding_ = false;
    finish(code <= 2 ? static_cast<PortalResponse::Code>(code) : PortalResponse::Code::ended,
           results);
}

void PortalRequest::finish(PortalResponse::Code code, const QVariantMap& results) {
    if (const auto callback = std::exchange(onResponse_, nullptr)) {
        deleteLater();
        callback({.code = code, .results = results});
    }
}

} // namespace orlune
