// Reports when the desktop is ready for a tray icon. Panels start late at login, and Qt looks for
// one only once per process, so it must not look before. Main thread, with Qt's loop running. Never
// reports on a desktop without a tray; does not poll.
#pragma once

#include <QObject>

#include <functional>
#include <memory>

class QTimer;

namespace orlune {

class XEventSource;

class TrayHost final : public QObject {
    Q_OBJECT

  public:
    /// `onReady` is called once, in a later turn.
    explicit TrayHost(std::function<void()> onReady);
    ~TrayHost() override;

  private Q_SLOTS:
    void onHostRegistered();

  private:
    void askWatcher();
    void followEmbeddingTray();
    void lookForEmbeddingTray();
    void tell();

    std::function<void()> onReady_;
    std::unique_ptr<XEventSource> events_;
    unsigned long traySelection_ = 0;
    std::unique_ptr<QTimer> patience_;
};

} // namespace orlune
