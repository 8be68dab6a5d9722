#include "platform/linux/paste/QtPasteboard.h"

#include "platform/linux/x11/QtConnection.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QString>
#include <QTimer>

#include <utility>
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

QtPasteboard::QtPasteboard() : nextTurn_(std::make_unique<QTimer>()) {
    nextTurn_->setSingleShot(true);
    nextTurn_->setInterval(0);
    QObject::connect(nextTurn_.get(), &QTimer::timeout, nextTurn_.get(), [this] {
        if (refused_.isNull()) {
            QGuiApplication::clipboard()->clear();
        } else {
            offer(std::exchange(refused_, {}), QClipboard::Clipboard);
        }
    });
}

QtPasteboard::~QtPasteboard() = default;

void QtPasteboard::clearContents() {
    refused_ = {};
    nextTurn_->start();
}

bool QtPasteboard::setString(const std::string& text) {
    nextTurn_->stop();
    refused_ = QString::fromStdString(text);
    if (offer(refused_, QClipboard::Clipboard)) {
        refused_ = {};
        return true;
    }
    nextTurn_->start();
    return false;
}

bool QtPasteboard::ownPrimarySelection() {
    return isOwned(QClipboard::Clipboard)
           && offer(QGuiApplication::clipboard()->text(), QClipboard::Selection);
}

} // namespace orlune
