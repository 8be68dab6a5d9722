// Renders one SVG to square PNG files, each directly from the vectors.
//   orlune-render-icons FILE.svg SIZE FILE.png [SIZE FILE.png]…
// Only used in the build, not installed. Prints an error and returns 1 on failure.

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

namespace {

bool draw(QSvgRenderer& drawing, int size, const QString& file) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        return false;
    }
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    drawing.render(&painter);
    painter.end();
    return image.save(file, "PNG");
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount < 4 || argumentCount % 2 != 0) {
        std::fputs("Usage: orlune-render-icons FILE.svg SIZE FILE.png [SIZE FILE.png]...\n",
                   stderr);
        return 2;
    }
    QSvgRenderer drawing(QString::fromLocal8Bit(arguments[1]));
    if (!drawing.isValid()) {
        std::fprintf(stderr, "orlune-render-icons: %s is not a drawing\n", arguments[1]);
        return 1;
    }
    for (int index = 2; index < argumentCount; index += 2) {
        const QString file = QString::fromLocal8Bit(arguments[index + 1]);
        if (!draw(drawing, QByteArray(arguments[index]).toInt(), file)) {
            std::fprintf(stderr, "orlune-render-icons: %s cannot be written\n",
                         arguments[index + 1]);
            return 1;
        }
    }
    return 0;
}
