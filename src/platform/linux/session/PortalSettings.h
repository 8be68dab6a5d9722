// The settings of the desktop, as its portal publishes them on the session bus. Main thread, with
// Qt's loop running; reports the current values there, then each change. Never blocks. Reports
// nothing without a bus; without a portal, reports nothing until one appears, then follows it.
#pragma once

#include <QDBusVariant>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>

namespace orlune {

class PortalSettings final : public QObject {
    Q_OBJECT

  public:
    using OnValue =
        std::function<void(const QString& group, const QString& key, const QVariant& value)>;

    /// Reports only the settings of these groups. Returns at once.
    PortalSettings(QStringList groups, OnValue onValue);
    ~PortalSettings() override;

  private Q_SLOTS:
    void onSettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

  private:
    void ask();
    void tell(const QString& group, const QString& key, QVariant value);

    QStringList groups_;
    OnValue onValue_;
};

} // namespace orlune
