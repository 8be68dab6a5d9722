// A native Wayland window with a text field, for tests to paste into. Writes the field's text into
// a file at each change. The file appears once the field has the focus.
// native_entry FILE
#include <QApplication>
#include <QFile>
#include <QPlainTextEdit>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "wayland");
    QApplication application(argc, argv);
    QPlainTextEdit entry;
    const auto write = [&] {
        QFile file(QString::fromLocal8Bit(argv[1]));
        if (entry.hasFocus() && file.open(QFile::WriteOnly)) {
            file.write(entry.toPlainText().toUtf8());
        }
    };
    QObject::connect(&entry, &QPlainTextEdit::textChanged, write);
    QObject::connect(&application, &QApplication::focusChanged, write);
    entry.showMaximized();
    return QApplication::exec();
}
