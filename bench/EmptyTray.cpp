// The smallest possible program with a tray icon, which shows what the toolkit itself costs. For
// bench/idle-beside-tray-utilities.
#include <QApplication>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argumentCount, char** arguments) {
    QApplication application(argumentCount, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    QPixmap picture(22, 22);
    picture.fill(Qt::white);
    QMenu menu;
    menu.addAction(QStringLiteral("Quit"), &application, &QCoreApplication::quit);
    QSystemTrayIcon icon(picture);
    icon.setContextMenu(&menu);
    icon.show();
    return QCoreApplication::exec();
}
