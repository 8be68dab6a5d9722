#include "platform/linux/windows/TrayHost.h"

#include "platform/linux/session/BusCall.h"
#include "platform/linux/x11/XEventSource.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QTimer>
#include <X11/Xlib.h>
#include <X11/extensions/Xfixes.h>

#include <chrono>
#include <string>
#include <utility>

namespace orlune {

namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

/// Desktops with both kinds of tray start the older one first.
constexpr auto patienceWithEmbedding = std::chrono::seconds(3);

} // namespace

TrayHost::TrayHost(std::function<void()> onReady) : onReady_(std::move(onReady)) {
    auto bus = QDBusConnection::sessionBus();
    bus.connect(watcherName, watcherPath, watcherName,
                QStringLiteral("StatusNotifierHostRegistered"), this, SLOT(onHostRegistered()));
    auto* watcher =
        new QDBusServiceWatcher(watcherName, bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, [this] { askWatcher(); });
    askWatcher();
    followEmbeddingTray();
}

TrayHost::~TrayHost() = default;

void TrayHost::onHostRegistered() {
    tell();
}

void TrayHost::askWatcher() {
    readProperty(
        QDBusConnection::sessionBus(),
        {watcherName, watcherPath, watcherName, QStringLiteral("IsStatusNotifierHostRegistered")},
        this, [this](const QVariant& isRegistered) {
            if (isRegistered.toBool()) {
                tell();
            }
        });
}

void TrayHost::followEmbeddingTray() {
    events_ = XEventSource::open("");
    if (!events_) {
        return;
    }
    Display* display = events_->display();
    const auto name = "_NET_SYSTEM_TRAY_S" + std::to_string(DefaultScreen(display));
    traySelection_ = XInternAtom(display, name.c_str(), /*only_if_exists=*/False);
    int firstEvent = 0;
    int firstError = 0;
    if (XFixesQueryExtension(display, &firstEvent, &firstError)) {
        XFixesSelectSelectionInput(display, DefaultRootWindow(display), traySelection_,
                                   XFixesSetSelectionOwnerNotifyMask);
    }
    patience_ = std::make_unique<QTimer>();
    patience_->setSingleShot(true);
    connect(patience_.get(), &QTimer::timeout, this, [this] { tell(); });
    events_->start([this](const XEvent& /*event*/) { lookForEmbeddingTray(); });
    lookForEmbeddingTray();
    events_->readPending();
}

void TrayHost::lookForEmbeddingTray() {
    if (XGetSelectionOwner(events_->display(), traySelection_) != None && !patience_->isActive()) {
        patience_->start(patienceWithEmbedding);
    }
}

void TrayHost::tell() {
    patience_.reset();
    events_.reset();
    if (const auto onReady = std::exchange(onReady_, nullptr)) {
        QMetaObject::invokeMethod(this, onReady, Qt::QueuedConnection);
    }
}

} // namespace orlune
