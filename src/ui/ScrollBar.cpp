#include "ui/ScrollBar.h"

#include "ui/Style.h"
#include "ui/Surface.h"

#include <QPainter>
#include <QProxyStyle>
#include <QStyleOptionSlider>

namespace orlune::ui {

namespace {

constexpr int thickness = 11;
constexpr int inset = 3;

/// The handle moves along the whole bar; there are no arrows at its ends.
class SlimStyle final : public QProxyStyle {
  public:
    explicit SlimStyle(ScrollBar::Place place) : place_(place) {}

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override {
        switch (metric) {
        case PM_ScrollBarExtent:
            return 0;
        case PM_ScrollView_ScrollBarOverlap:
            return place_ == ScrollBar::Place::over ? thickness : 0;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }

  private:
    ScrollBar::Place place_;
};

} // namespace

ScrollBar::ScrollBar(Place place) : QScrollBar(Qt::Vertical) {
    auto* slimStyle = new SlimStyle(place);
    slimStyle->setParent(this);
    setStyle(slimStyle);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::ArrowCursor); // not the cursor of the text next to it
}

QSize ScrollBar::sizeHint() const {
    return {thickness, QScrollBar::sizeHint().height()};
}

void ScrollBar::paintEvent(QPaintEvent* /*event*/) {
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect handle =
        style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
    const double opacity = isSliderDown() ? 0.45 : underMouse() ? 0.36 : 0.26;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintSurface(painter, handle.adjusted(inset, inset, -inset, -inset),
                 {.shape = Shape::capsule(), .fill = withOpacity(Qt::white, opacity)});
}

} // namespace orlune::ui
