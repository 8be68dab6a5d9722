// The program's mark: a waveform inside a speech bubble on a dark tile. Main thread.
#pragma once

#include <QPainterPath>
#include <QRectF>
#include <QWidget>

#include <array>

namespace orlune {

class OrluneMark final : public QWidget {
  public:
    struct Measures {
        double cornerRadius;
        double bubblePadding;
        double barSpacing;
        double barWidth;
        std::array<double, 5> barHeights;
        double barLift; ///< the distance of the bars above the centre
        double rimWidth;
    };

    /// All in points, for a mark of `size` points.
    static Measures measures(double size);
    /// The outline of the tile that fills `square`, for shadows.
    static QPainterPath outline(const QRectF& square);
    /// Also for icons; the rim's line lies inside `square`.
    static void paint(QPainter& painter, const QRectF& square);

    /// A square of `size` points.
    explicit OrluneMark(double size);

  protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace orlune
