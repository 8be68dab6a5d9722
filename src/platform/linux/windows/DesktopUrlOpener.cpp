#include "platform/linux/windows/DesktopUrlOpener.h"

#include <QDesktopServices>
#include <QGuiApplication>
#include <QUrl>

namespace orlune {

bool DesktopUrlOpener::open(std::string_view url) {
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        return false;
    }
    const auto text = QString::fromUtf8(url.data(), static_cast<qsizetype>(url.size()));
    const QUrl parsed(text, QUrl::StrictMode);
    return parsed.isValid() && !parsed.isRelative() && QDesktopServices::openUrl(parsed);
}

} // namespace orlune
