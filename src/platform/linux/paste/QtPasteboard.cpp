#include "platform/linux/paste/QtPasteboard.h"

#include "platform/linux/x11/QtConnection.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QString>
#include <QTimer>

#include <xcb/xcb.h>

namespace orlune {

namespace {

xcb_atom_t selectionOf(xcb_connection_t* connection, QClipboard::Mode mode) {
    if (mode == QClipboard::Selection) {
        return XCB_ATOM_PRIMARY;
    }
    return atomNamed(connection, "CLIPBOARD", /*onlyIfExists=*/true);
}

/// Asks the X server: Qt believes that it owns a selection also when its request came too late.
bool isOwned(QClipboard::Mode mode) {
    auto* connection = qtConnection();
    if (!connection) {
        return mode == QClipboard::Clipboard ? QGuiApplication::clipboard()->ownsClipboard()
                                             : QGuiApplication::clipboard()->ownsSelection();
    }
    const auto request = xcb_get_selection_owner(connection, selectionOf(connection, mode));
    const OwnedReply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, request, nullptr));
    // Which of Qt's windows it is, is Qt's own matter.
    const auto* setup = xcb_get_setup(connection);
    return reply && reply->owner != XCB_WINDOW_NONE
           && (reply->owner & ~setup->resource_id_mask) == setup->resource_id_base;
}

bool offer(const QString& text, QClipboard::Mode mode) {
    QGuiApplication::clipboard()->setText(text, mode);
    return isOwned(mode);
}

} // namespace

QtPasteboard::QtPasteboard() : clearing_(std::make_unique<QTimer>()) {
    clearing_->setSingleShot(true);
    clearing_->setInterval(0);
    QObject::connect(clearing_.get(), &QTimer::timeout, clearing_.get(),
                     [] { QGuiApplication::clipboard()->clear(); });
}

QtPasteboard::~QtPasteboard() = default;

void QtPasteboard::clearContents() {
    clearing_->start();
}

bool QtPasteboard::setString(const std::string& text) {
    clearing_->stop();
    const auto offered = QString::fromStdString(text);
    if (offer(offered, QClipboard::Clipboard)) {
        return true;
    }
    QTimer::singleShot(0, clearing_.get(), [offered] { offer(offered, QClipboard::Clipboard); });
    return false;
}

bool QtPasteboard::ownPrimarySelection() {
    return isOwned(QClipboard::Clipboard)
           && offer(QGuiApplication::clipboard()->text(), QClipboard::Selection);
}

} // namespace orlune
