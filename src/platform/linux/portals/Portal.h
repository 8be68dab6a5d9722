// The desktop portal of the session bus, on its own connection, so that the program can register
// before any other call. Main thread, with Qt's loop running; answers arrive there, in a later
// turn. No call blocks.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QObject>
#include <QString>
#include <QVariant>

#include <chrono>
#include <deque>
#include <functional>
#include <optional>

class QDBusServiceWatcher;

namespace orlune {

/// How a request ended. `results` are meant for `granted`, but some portals
/// also send them with `ended`.
struct PortalResponse {
    enum class Code {
        granted = 0,
        refused = 1,  ///< by the user, in the portal's dialog
        ended = 2,    ///< by the portal, for another reason
        timedOut = 3, ///< no answer in time: a dialog may have been open
        failed = 4,   ///< the call itself failed, or the portal has ended
    };
    Code code = Code::failed;
    QVariantMap results;
};

class Portal final : public QObject {
    Q_OBJECT

  public:
    using OnResponse = std::function<void(const PortalResponse& response)>;

    /// The limit for requests without a dialog. The back end may have to start first.
    static constexpr std::chrono::seconds answerLimit{10};

    /// Null when there is no session bus, or when no portal runs on it or can be started.
    static std::unique_ptr<Portal> open(const QString& busAddress = {});
    ~Portal() override;

    /// Reads a number of an interface, such as "version"; none when the portal lacks the interface.
    void readNumber(const QString& interface, const QString& property,
                    std::function<void(std::optional<std::uint32_t>)> onNumber);

    /// Calls a method that answers with a request. `arguments` come before the options, to which
    /// the handle's token is added. Without a limit, a dialog may stay open indefinitely.
    /// `onResponse` is called once, but not after `receiver` was destroyed.
    void request(const QString& interface, const QString& method, QVariantList arguments,
                 QVariantMap options, std::optional<std::chrono::milliseconds> limit,
                 QObject* receiver, OnResponse onResponse);
    /// Calls a method whose answer does not matter. These calls are carried out in order: the
    /// portal has a thread for each call, so that the next one waits for the answer to the last.
    void send(const QString& interface, const QString& method, const QVariantList& arguments);
    void send(const QDBusMessage& call);

    QDBusConnection& connection() { return connection_; }
    /// Unique among all handles.
    QString makeToken();

  Q_SIGNALS:
    /// The portal has ended, and all requests and sessions with it.
    void lost();
    /// A new portal has started.
    void found();

  private:
    explicit Portal(QDBusConnection connection);
    void registerApplication();
    void sendNext();

    QDBusConnection connection_;
    QDBusServiceWatcher* owner_;
    int tokens_ = 0;
    std::deque<QDBusMessage> unsent_;
    bool isSending_ = false;
};

/// A session that a portal has opened. Destroying this object closes it.
class PortalSession final : public QObject {
    Q_OBJECT

  public:
    PortalSession(Portal& portal, QDBusObjectPath path, QObject* parent);
    ~PortalSession() override;

    const QDBusObjectPath& path() const { return path_; }
    /// Sends no signal. The portal is not used afterwards.
    void close();

  Q_SIGNALS:
    /// The user or the desktop has closed it.
    void closed();

  private Q_SLOTS:
    void onClosed(const QVariantMap& details);
    void onClosed(); ///< as older portals report closing

  private:
    Portal& portal_;
    QDBusObjectPath path_;
    bool isOpen_ = true;
};

} // namespace orlune
