#include "platform/linux/x11/XEventSource.h"

#include <QSocketNotifier>
#include <X11/Xlib.h>

#include <utility>

namespace orlune {

std::unique_ptr<XEventSource> XEventSource::open(const std::string& displayName) {
    auto connection = XConnection::open(displayName);
    return std::unique_ptr<XEventSource>(connection ? new XEventSource(std::move(connection))
                                                    : nullptr);
}

XEventSource::XEventSource(std::unique_ptr<XConnection> connection)
    : connection_(std::move(connection)) {}

XEventSource::~XEventSource() = default;

void XEventSource::start(OnEvent onEvent, std::function<void()> onLoss) {
    onEvent_ = std::move(onEvent);
    onLoss_ = std::move(onLoss);
    notifier_ =
        std::make_unique<QSocketNotifier>(ConnectionNumber(display()), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this] { readPending(); });
    readPending();
}

void XEventSource::readPending() {
    while (isAlive() && XPending(display()) > 0) {
        XEvent event{};
        XNextEvent(display(), &event);
        onEvent_(event);
    }
    if (!isAlive() && notifier_->isEnabled()) {
        notifier_->setEnabled(false);
        if (onLoss_) {
            onLoss_();
        }
    }
}

void XEventSource::catchUp() {
    connection_->roundTrip();
    readPending();
}

} // namespace orlune
