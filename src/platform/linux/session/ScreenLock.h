// Whether the screen is locked, as the session manager (logind) and the desktop's screen saver tell
// over D-Bus. Main thread, with Qt's loop running; changes are told there. A bus or a service that
// is not there never locks; one that ends no longer counts.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>

class QDBusMessage;

namespace orlune {

class ScreenLock final : public QObject {
    Q_OBJECT

  public:
    using OnChange = std::function<void(bool isLocked)>;

    /// Returns at once; a screen that is locked already is told soon after.
    explicit ScreenLock(OnChange onChange);
    ~ScreenLock() override;

  private Q_SLOTS:
    void onScreenSaver(bool isActive);
    void onProperties(const QString& interface, const QVariantMap& changed,
                      const QStringList& invalidated);

  private:
    using OnValue = std::function<void(const QVariant&)>;

    void followScreenSaver();
    void followSession(const QString& id);
    void askProperty(const QString& path, const QString& name, OnValue onValue);
    void ask(const QDBusMessage& call, OnValue onValue);
    void update(bool isSessionLocked, bool isScreenSaverActive);

    OnChange onChange_;
    bool isSessionLocked_ = false;
    bool isScreenSaverActive_ = false;
};

} // namespace orlune
