// A filled shape with content: a card, a field, a badge, a key cap. Main thread.
#pragma once

#include "ui/Shape.h"

#include <QBrush>
#include <QColor>
#include <QWidget>

namespace orlune::ui {

struct SurfaceStyle {
    Shape shape = Shape::rectangle();
    QBrush fill = Qt::NoBrush;
    QColor stroke = Qt::transparent;
    double lineWidth = 0; ///< points; the line lies inside the shape's edge
};

class Surface final : public QWidget {
  public:
    /// As large as `content`, which it owns and which may be null.
    explicit Surface(const SurfaceStyle& style, QWidget* content = nullptr);

    const SurfaceStyle& style() const { return style_; }
    void setStyle(const SurfaceStyle& style);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    SurfaceStyle style_;
};

/// Paints a surface into `rectangle`.
void paintSurface(QPainter& painter, const QRectF& rectangle, const SurfaceStyle& style);

} // namespace orlune::ui
