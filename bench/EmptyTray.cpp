// The least that a program with an icon in the tray can be: what the toolkit costs by itself, for
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
