#include "tests/desktop/wayland/Screen.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <array>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace orlune::desktop {

namespace {

constexpr auto kwin = "org.kde.KWin.ScreenShot2";
constexpr auto shell = "org.gnome.Shell.Screenshot";
/// Whose owner GNOME Shell takes pictures for.
constexpr auto shellClient = "org.gnome.Screenshot";

[[noreturn]] void fail(const QString& reason) {
    throw std::runtime_error("no picture of the screen: " + reason.toStdString());
}

QImage pictureByKWin() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        fail("no pipe");
    }
    QFile pixels;
    const bool isOpen = pixels.open(ends[0], QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
    auto call = QDBusMessage::createMethodCall(kwin, "/org/kde/KWin/ScreenShot2", kwin,
                                               "CaptureActiveScreen");
    call << QVariantMap() << QVariant::fromValue(QDBusUnixFileDescriptor(ends[1]));
    const QDBusReply<QVariantMap> reply = QDBusConnection::sessionBus().call(call);
    ::close(ends[1]); // KWin has its own now, and closes it behind the last pixel
    if (!isOpen || !reply.isValid()) {
        fail(reply.error().message());
    }
    const auto facts = reply.value();
    const int width = facts["width"].toInt();
    const int height = facts["height"].toInt();
    const int stride = facts["stride"].toInt();
    const auto bytes = pixels.readAll();
    if (bytes.size() < qsizetype{stride} * height) {
        fail("too few pixels");
    }
    return QImage(reinterpret_cast<const uchar*>(bytes.constData()), width, height, stride,
                  static_cast<QImage::Format>(facts["format"].toInt()))
        .copy();
}

QImage pictureFromFile(const QString& file) {
    QImage picture(file);
    if (picture.isNull()) {
        fail(file + " can't be read");
    }
    return picture;
}

QImage pictureByShell() {
    const QTemporaryDir folder;
    auto bus = QDBusConnection::sessionBus();
    if (!bus.registerService(shellClient)) {
        fail("somebody else takes pictures");
    }
    auto call =
        QDBusMessage::createMethodCall(shell, "/org/gnome/Shell/Screenshot", shell, "Screenshot");
    call << /*include_cursor=*/false << /*flash=*/false << folder.filePath("screen.png");
    const QDBusReply<bool> reply = bus.call(call);
    bus.unregisterService(shellClient);
    if (!reply.isValid() || !reply.value()) {
        fail(reply.error().message());
    }
    return pictureFromFile(folder.filePath("screen.png"));
}

QImage pictureByGrim() {
    const QTemporaryDir folder;
    const auto file = folder.filePath("screen.png");
    if (QProcess::execute("grim", {file}) != 0) {
        fail("grim failed");
    }
    return pictureFromFile(file);
}

} // namespace

QImage screenshot() {
    const auto* const bus = QDBusConnection::sessionBus().interface();
    if (bus && bus->isServiceRegistered(kwin)) {
        return pictureByKWin();
    }
    if (bus && bus->isServiceRegistered(shell)) {
        return pictureByShell();
    }
    return pictureByGrim();
}

} // namespace orlune::desktop
