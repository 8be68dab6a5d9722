#include "ui/FocusRing.h"

#include "ui/Surface.h"

#include <QFocusEvent>
#include <QFocusFrame>
#include <QPainter>
#include <QProxyStyle>

namespace orlune::ui {

namespace {

constexpr int distance = 4;
constexpr double frameRadius = 6;

/// Whether the focus last reached a control with a ring by the keyboard.
bool isKeyboardLeading = false;

class FrameStyle final : public QProxyStyle {
  public:
    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override {
        return metric == PM_FocusFrameHMargin || metric == PM_FocusFrameVMargin
                   ? distance
                   : QProxyStyle::pixelMetric(metric, option, widget);
    }
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        return hint == SH_FocusFrame_Mask ? 0 : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

class Frame final : public QFocusFrame {
  public:
    Frame() {
        auto* style = new FrameStyle;
        style->setParent(this);
        setStyle(style);
    }

  protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        paintFocusRing(painter, rect(), frameRadius, palette().color(QPalette::Highlight));
    }
};

} // namespace

FocusRing::FocusRing(QWidget& control, Place place) : control_(control), place_(place) {
    control.installEventFilter(this);
}

FocusRing::~FocusRing() {
    delete frame_;
}

bool FocusRing::eventFilter(QObject* /*control*/, QEvent* event) {
    switch (event->type()) {
    case QEvent::FocusIn: {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason == Qt::MouseFocusReason) {
            isKeyboardLeading = false;
        } else if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason
                   || reason == Qt::ShortcutFocusReason) {
            isKeyboardLeading = true;
        }
        show(isKeyboardLeading);
        break;
    }
    case QEvent::FocusOut:
        show(false);
        break;
    case QEvent::MouseButtonPress:
        isKeyboardLeading = false;
        show(false);
        break;
    default:
        break;
    }
    return false;
}

void FocusRing::show(bool isShown) {
    isShown_ = isShown;
    control_.update();
    if (!isShown || place_ == Place::inside) {
        delete frame_;
    } else if (!frame_) {
        frame_ = new Frame;
        frame_->setWidget(&control_);
    }
}

void paintFocusRing(QPainter& painter, const QRectF& control, double radius, const QColor& tint) {
    constexpr double width = 2;
    paintSurface(
        painter, control,
        {.shape = Shape::rounded(radius), .stroke = tint.lighter(150), .lineWidth = width});
}

} // namespace orlune::ui
