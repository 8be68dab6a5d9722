// The shortcut in a Plasma session: KWin reports press and release of the keys that are registered
// with its service for global shortcuts. Registered anew at each start, and when the service
// restarts. Main thread, with Qt's loop running.
#pragma once

#include "platform/linux/keys/ShortcutEdges.h"
#include "platform/linux/keys/ShortcutSource.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

class QDBusServiceWatcher;

namespace orlune {

/// The shortcut as a Qt key number with modifiers; none when Qt has no such number. `functionKey`
/// is the symbol of the key that stands in for Fn, such as "Control_R"; left and right are not
/// distinguished. A pure function.
std::optional<int> qtKeyFor(const KeyCombination& shortcut, std::string_view functionKey);

class KGlobalAccel final : public QObject, public ShortcutSource {
    Q_OBJECT

  public:
    /// None when the service does not run on this bus.
    static std::unique_ptr<KGlobalAccel> open(const QDBusConnection& bus, std::string functionKey);
    ~KGlobalAccel() override;

    std::string name() const override { return "KGlobalAccel"; }
    void setObserver(Observer observer) override { observer_ = std::move(observer); }
    void watch(const KeyCombination& shortcut) override;
    void watchEscape(bool isWanted) override;
    void requestAccess() override {}
    std::string reasonForUnavailability() const override { return reason_; }
    bool reportsReleases() const override { return true; }
    void releaseAll() override;

  private Q_SLOTS:
    void onPressed(const QString& component, const QString& action, qlonglong timestamp);
    void onReleased(const QString& component, const QString& action, qlonglong timestamp);

  private:
    KGlobalAccel(QDBusConnection bus, std::string functionKey);
    void listen();
    void bindShortcut();
    /// `onBound` receives the key that was actually bound, 0 when another program uses it.
    void bind(const QString& action, int key, std::function<void(int key)> onBound);
    void judge();
    void setReason(std::string reason);
    void report(const std::optional<KeyEvent>& event);

    QDBusConnection bus_;
    std::string functionKey_;
    Observer observer_;
    std::string reason_ = "the desktop has not answered yet";
    ShortcutEdges edges_;
    bool watchesShortcut_ = false;
    bool isEscapeBound_ = false;
    bool isTaken_ = false; ///< another program uses the keys
    bool isListening_ = false;
    QDBusServiceWatcher* service_;
};

} // namespace orlune
