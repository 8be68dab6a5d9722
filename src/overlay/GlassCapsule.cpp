#include "overlay/GlassCapsule.h"

#include "ui/Shadow.h"
#include "ui/Style.h"
#include "ui/Surface.h"

#include <QPainter>
#include <QVBoxLayout>

namespace orlune {

namespace {

/// Dense enough to stay readable over white where nothing behind it is blurred.
constexpr double density = 0.88;

} // namespace

GlassCapsule::GlassCapsule(QWidget* content, int margin) : margin_(margin) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->addWidget(content);
}

QColor GlassCapsule::opaqueGlass() {
    return ui::rgb(0.115, 0.105, 0.13);
}

QColor GlassCapsule::glass() const {
    return ui::withOpacity(opaqueGlass(), isTranslucent_ ? density : 1);
}

void GlassCapsule::setTranslucent(bool isTranslucent) {
    if (isTranslucent_ != isTranslucent) {
        isTranslucent_ = isTranslucent;
        update();
    }
}

QPainterPath GlassCapsule::outline() const {
    return ui::capsule(QRectF(rect()).adjusted(margin_, margin_, -margin_, -margin_));
}

/// The shadow is cut out under the glass, through which it would show. It fades out towards the
/// window's edge, which is closer than the shadow would reach.
const QImage& GlassCapsule::shadow() {
    const double scale = devicePixelRatioF();
    const QSize pixels = (QSizeF(size()) * scale).toSize();
    if (shadow_.size() == pixels) {
        return shadow_;
    }
    const auto blank = [&] {
        QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(scale);
        image.fill(Qt::transparent);
        return image;
    };
    const double halfMargin = margin_ / 2.0;
    QImage room = blank();
    QPainter(&room).fillRect(
        QRectF(rect()).adjusted(halfMargin, halfMargin, -halfMargin, -halfMargin), Qt::black);
    room = ui::blurred(room, halfMargin / 2 * scale);
    room.setDevicePixelRatio(scale);

    shadow_ = blank();
    QPainter painter(&shadow_);
    painter.setRenderHint(QPainter::Antialiasing);
    ui::Shadow(ui::withOpacity(Qt::black, 0.18), /*radius=*/18, /*offset=*/{0, 7})
        .paint(painter, outline());
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawImage(QPointF(), room);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.fillPath(outline(), Qt::black);
    return shadow_;
}

void GlassCapsule::paintEvent(QPaintEvent* /*event*/) {
    const auto capsule = outline();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isTranslucent_) {
        painter.drawImage(QPointF(), shadow());
    }
    ui::paintSurface(painter, capsule.boundingRect(),
                     {.shape = ui::Shape::capsule(),
                      .fill = glass(),
                      .stroke = ui::withOpacity(Qt::white, 0.13),
                      .lineWidth = 0.5});
}

} // namespace orlune
