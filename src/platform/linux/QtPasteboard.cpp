#include "platform/linux/QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QString>
#include <QTimer>

#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

namespace orlune {

namespace {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

template <typename Reply>
using OwnedReply = std::unique_ptr<Reply, FreeDeleter>;

xcb_atom_t selectionOf(xcb_connection_t* connection, QClipboard::Mode mode) {
    if (mode == QClipboard::Selection) {
        return XCB_ATOM_PRIMARY;
    }
    constexpr std::string_view name = "CLIPBOARD";
    const auto request = xcb_intern_atom(connection, /*only_if_exists=*/1,
                                         static_cast<std::uint16_t>(name.size()), name.data());
    const OwnedReply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection, request, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

/// Asks the X server: Qt believes that it owns a selection also when its request came too late.
bool isOwned(QClipboard::Mode mode) {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11) {
        return mode == QClipboard::Clipboard ? QGuiApplication::clipboard()->ownsClipboard()
                                             : QGuiApplication::clipboard()->ownsSelection();
    }
    auto* connection = x11->connection();
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
    return offer(QString::fromStdString(text), QClipboard::Clipboard);
}

bool QtPasteboard::ownPrimarySelection() {
    return isOwned(QClipboard::Clipboard)
           && offer(QGuiApplication::clipboard()->text(), QClipboard::Selection);
}

} // namespace orlune
