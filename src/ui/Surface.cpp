#include "ui/Surface.h"

#include <QPainter>
#include <QVBoxLayout>

namespace orlune::ui {

Surface::Surface(const SurfaceStyle& style, QWidget* content) : style_(style) {
    if (content) {
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(content);
        setSizePolicy(content->sizePolicy());
    }
}

void Surface::setStyle(const SurfaceStyle& style) {
    style_ = style;
    update();
}

void Surface::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintSurface(painter, rect(), style_);
}

void paintSurface(QPainter& painter, const QRectF& rectangle, const SurfaceStyle& style) {
    if (style.fill != Qt::NoBrush) {
        painter.fillPath(style.shape.path(rectangle), style.fill);
    }
    if (style.lineWidth > 0) {
        const double inset = style.lineWidth / 2;
        QPen pen(style.stroke, style.lineWidth);
        pen.setJoinStyle(Qt::MiterJoin);
        pen.setMiterLimit(10);
        pen.setCapStyle(Qt::FlatCap);
        painter.strokePath(style.shape.path(rectangle.adjusted(inset, inset, -inset, -inset)), pen);
    }
}

} // namespace orlune::ui
