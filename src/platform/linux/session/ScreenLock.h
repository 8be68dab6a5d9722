// Reports whether the screen is locked, as the session manager (logind) and the desktop's screen
// saver announce it over D-Bus. Main thread, with Qt's loop running; changes are reported there. A
// missing bus or service never counts as locked, and a service that ends no longer does.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>

namespace orlune {

class ScreenLock final : public QObject {
    Q_OBJECT

  public:
    using OnChange = std::function<void(bool isLocked)>;

    /// Returns at once; reports a screen that is already locked soon afterwards.
    explicit ScreenLock(OnChange onChange);
    ~ScreenLock() override;

  private Q_SLOTS:
    void onScreenSaver(bool isActive);
    void onProperties(const QString& interface, const QVariantMap& changed,
                      const QStringList& invalidated);

  private:
    void followScreenSaver();
    void followSession(const QString& id);
    void followLock(const QString& path);
    void update(bool isSessionLocked, bool isScreenSaverActive);

    OnChange onChange_;
    bool isSessionLocked_ = false;
    bool isScreenSaverActive_ = false;
};

} // namespace orlune
