#include "ui/Picture.h"

#include <QImage>
#include <QPainter>

namespace orlune::ui {

QPixmap picture(QSize pixels, double devicePixelRatio,
                const std::function<void(QPainter&)>& paint) {
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    paint(painter);
    painter.end();
    return QPixmap::fromImage(image.copy());
}

} // namespace orlune::ui
