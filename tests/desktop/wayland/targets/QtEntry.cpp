// A native window of Qt 6 with one line edit, which reports what is typed into it.
#include "Report.h"

#include <QApplication>
#include <QLineEdit>
#include <QWindow>

using orlune::targets::reportFocus;
using orlune::targets::reportText;

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "wayland");
    QApplication application(argc, argv);
    QGuiApplication::setDesktopFileName("app.orlune.QtTarget");
    QLineEdit edit;
    edit.setWindowTitle("Qt target");
    edit.resize(400, 60);
    QObject::connect(&edit, &QLineEdit::textChanged,
                     [](const QString& text) { reportText(text.toStdString()); });
    edit.show();
    edit.setFocus();
    QObject::connect(edit.windowHandle(), &QWindow::activeChanged,
                     [&] { reportFocus(edit.windowHandle()->isActive()); });
    return QApplication::exec();
}
