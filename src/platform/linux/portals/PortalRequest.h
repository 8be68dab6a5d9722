// One request to the portal, from the call to its response. Deletes itself afterwards. When its
// receiver is destroyed first, it also closes an open dialog.
#pragma once

#include "platform/linux/portals/Portal.h"

#include <QDBusMessage>

#include <memory>

class QTimer;

namespace orlune {

inline const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
inline const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");

class PortalRequest final : public QObject {
    Q_OBJECT

  public:
    PortalRequest(Portal& portal, const QDBusMessage& call, const QString& token,
                  std::optional<std::chrono::milliseconds> limit, QObject* receiver,
                  Portal::OnResponse onResponse);
    ~PortalRequest() override;

  private Q_SLOTS:
    void onResponse(uint code, const QVariantMap& results);

  private:
    void listen(const QString& path);
    void finish(PortalResponse::Code code, const QVariantMap& results = {});

    QDBusConnection connection_;
    QString path_;
    Portal::OnResponse onResponse_;
    bool isStanding_ = true;
    std::unique_ptr<QTimer> limit_;
};

} // namespace orlune
