#include "platform/linux/x11/QtConnection.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

namespace orlune {

xcb_connection_t* qtConnection() {
    const auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    const auto* x11 =
        application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

std::uint32_t atomNamed(xcb_connection_t* connection, std::string_view name, bool onlyIfExists) {
    const auto request = xcb_intern_atom(connection, onlyIfExists ? 1 : 0,
                                         static_cast<std::uint16_t>(name.size()), name.data());
    const OwnedReply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection, request, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace orlune
