// The shortcut where the desktop's portal reports it: GNOME from 48 on, Hyprland. The desktop asks
// the user once, in a dialog that only `requestAccess` opens, and remembers the answer by itself; a
// small file of ours says for which keys it has one. Two shortcuts are bound: dictating, and
// cancelling, which has no keys until the user gives it some there. It replaces Escape, which a
// portal would take from all other programs as long as it is bound. Main thread, with Qt's loop
// running.
#pragma once

#include "platform/linux/keys/NamedShortcut.h"
#include "platform/linux/keys/RepeatedPresses.h"
#include "platform/linux/keys/ShortcutEdges.h"
#include "platform/linux/keys/ShortcutSource.h"
#include "platform/linux/portals/Portal.h"
#include "platform/linux/portals/TokenStore.h"

#include <QElapsedTimer>
#include <QTimer>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace orlune {

class GlobalShortcuts final : public QObject, public ShortcutSource {
    Q_OBJECT

  public:
    /// Stores which keys the desktop has bound, in the program's state folder.
    static constexpr auto boundFile = "global-shortcuts";
    /// After this time a session that the portal refused or closed is opened once more: it does so
    /// while the desktop starts.
    static constexpr std::chrono::seconds retryDelay{1};

    struct Surroundings {
        /// The symbol of the key that stands in for Fn, such as "Control_R".
        std::string functionKey;
        /// XDG_CURRENT_DESKTOP: each desktop remembers its own answers.
        std::string desktop;
    };

    /// `portal` and `bound` must outlive the source.
    GlobalShortcuts(Portal& portal, TokenStore& bound, Surroundings surroundings);
    ~GlobalShortcuts() override;

    std::string name() const override { return "GlobalShortcuts portal"; }
    bool isMissing() const override { return isMissing_; }
    void setObserver(Observer observer) override { observer_ = std::move(observer); }
    void watch(const KeyCombination& shortcut) override;
    void watchEscape(bool isWanted) override { isEscapeWanted_ = isWanted; }
    void requestAccess() override;
    std::string reasonForUnavailability() const override { return reason_; }
    bool reportsReleases() const override { return !trigger_ || !trigger_->isModifierOnly; }
    void releaseAll() override;

  private Q_SLOTS:
    void onActivated(const QDBusObjectPath& session, const QString& id, qulonglong timestamp,
                     const QVariantMap& options);
    void onDeactivated(const QDBusObjectPath& session, const QString& id, qulonglong timestamp,
                       const QVariantMap& options);

  private:
    enum class Way {
        silently,
        asking,
        /// The desktop ignores the keys that we propose as long as it remembers others, and forgets
        /// those that are no longer bound. So the first session binds none, the next one asks.
        forgetting,
    };

    void findOut();
    void begin();
    void open(Way way);
    void bind(Way way);
    void finish(Way way, const PortalResponse& response);
    void fail(std::string reason);
    void failOrRetry(Way way, std::string reason);
    void close();
    std::string record() const;
    bool isOurs(const QDBusObjectPath& session) const;
    void setReason(std::string reason);
    void report(const std::optional<KeyEvent>& event);
    void report(const RepeatedPresses::Edges& edges);
    RepeatedPresses::Time now() const;

    Portal& portal_;
    TokenStore& bound_;
    Surroundings surroundings_;
    Observer observer_;
    std::string reason_;
    bool isThere_ = false;   ///< the portal has this interface
    bool isMissing_ = false; ///< the portal has answered that it does not
    bool isWatching_ = false;
    bool isEscapeWanted_ = false;
    bool isRetryLeft_ = true;
    std::optional<NamedShortcut> trigger_;
    ShortcutEdges edges_;
    RepeatedPresses presses_;
    QElapsedTimer clock_;
    QTimer deadline_; ///< the deadline of `presses_`
    std::unique_ptr<PortalSession> session_;
    /// Receives the responses while a session is opened; null otherwise.
    std::unique_ptr<QObject> attempt_;
};

} // namespace orlune
