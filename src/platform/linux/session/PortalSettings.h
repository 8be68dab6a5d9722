// The settings of the desktop, whichever it is, as its portal offers them on the session bus. Main
// thread, with Qt's loop running; values are told there, first those that hold already, then each
// change. Never waits. Without a bus or a portal nothing is told; one that comes later is heard.
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

    /// Tells the settings of these groups alone. Returns at once.
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
