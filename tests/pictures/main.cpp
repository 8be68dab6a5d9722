// Renders every picture in the tables to a PNG file, for visual inspection.

#include "tests/pictures/Pictures.h"
#include "visuals/OrlunePalette.h"

#include <QApplication>
#include <QDir>
#include <QVBoxLayout>

#include <cstdio>

namespace orlune::pictures {
namespace {

bool save(const Picture& picture, const QDir& folder, const QString& ending) {
    Stage stage;
    QWidget window;
    window.setAutoFillBackground(true);
    QPalette palette;
    palette.setColor(QPalette::Window, OrlunePalette::background());
    window.setPalette(palette);
    auto* layout = new QVBoxLayout(&window);
    layout->setContentsMargins(picture.margin, picture.margin, picture.margin, picture.margin);
    layout->setSizeConstraint(QLayout::SetNoConstraint);
    layout->addWidget(picture.make(stage));
    window.resize(window.sizeHint()); // even if the screen is smaller
    window.show();
    QApplication::processEvents();
    const QString file = folder.filePath(picture.name + ending);
    if (!window.grab().save(file)) {
        std::fprintf(stderr, "orlune_pictures: cannot write %s\n", qPrintable(file));
        return false;
    }
    return true;
}

int run(const QString& folderName, const QString& scale, const QString& wanted) {
    const QDir folder(folderName);
    if (!folder.mkpath(".")) {
        std::fprintf(stderr, "orlune_pictures: cannot make %s\n", qPrintable(folderName));
        return 1;
    }
    const QString ending = scale == "1" ? ".png" : "@" + scale + "x.png";
    for (const auto& table : {symbolPictures(), visualPictures(), overlayPictures(),
                              settingsPictures(), mainWindowPictures()}) {
        for (const auto& picture : table) {
            if (picture.name.contains(wanted) && !save(picture, folder, ending)) {
                return 1;
            }
        }
    }
    return 0;
}

} // namespace
} // namespace orlune::pictures

int main(int argumentCount, char** arguments) {
    if (argumentCount < 3 || argumentCount > 4 || QByteArray(arguments[2]).toDouble() <= 0) {
        std::fputs("usage: orlune_pictures FOLDER SCALE [PART-OF-NAME]\n", stderr);
        return 64;
    }
    // Qt reads both when the application object is created. The pictures need no display.
    qputenv("QT_SCALE_FACTOR", arguments[2]);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argumentCount, arguments);
    return orlune::pictures::run(arguments[1], arguments[2], argumentCount > 3 ? arguments[3] : "");
}
