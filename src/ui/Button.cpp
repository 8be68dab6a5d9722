#include "ui/Button.h"

#include "ui/Surface.h"
#include "ui/Symbol.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace orlune::ui {

namespace {

constexpr double cornerRadius = 6;
constexpr double symbolGap = 5;

struct Measures {
    int height;
    int horizontalPadding;
};

Measures measures(const ButtonLook& look) {
    if (look.style == ButtonStyle::plain) {
        return {.height = 0, .horizontalPadding = 0};
    }
    return look.size == ControlSize::large ? Measures{.height = 30, .horizontalPadding = 16}
                                           : Measures{.height = 24, .horizontalPadding = 11};
}

double symbolSide(const ButtonLook& look) {
    return look.symbol.isEmpty() ? 0 : 1.25 * look.font.size;
}

QColor background(const QPushButton& button, ButtonStyle style) {
    const bool isPressed = button.isDown();
    if (style == ButtonStyle::prominent) {
        const QColor tint = button.palette().color(QPalette::Highlight);
        return isPressed ? tint.darker(115) : button.underMouse() ? tint.lighter(108) : tint;
    }
    return withOpacity(Qt::white, isPressed ? 0.2 : button.underMouse() ? 0.15 : 0.11);
}

} // namespace

Button::Button(const QString& title, const ButtonLook& look)
    : look_(look), focusRing_(*this, look.style == ButtonStyle::plain ? FocusRing::Place::around
                                                                      : FocusRing::Place::inside) {
    setText(title);
    setFont(look.font.resolved());
    setAutoDefault(true); // Return presses the focused button, as Space does
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    if (look.style == ButtonStyle::plain) {
        setCursor(Qt::PointingHandCursor);
    }
}

/// A held Return presses only once, and does not press the controls that get the focus afterwards.
void Button::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn || !event->isAutoRepeat()) {
        QPushButton::keyPressEvent(event);
    }
}

double Button::symbolWidth() const {
    if (look_.symbol.isEmpty()) {
        return 0;
    }
    const double side = symbolSide(look_);
    return text().isEmpty() ? side : side + symbolGap;
}

QSize Button::sizeHint() const {
    const auto [height, padding] = measures(look_);
    const QFontMetricsF metrics(font());
    const double title = metrics.horizontalAdvance(text());
    return {static_cast<int>(std::ceil(title + symbolWidth())) + 2 * padding,
            std::max(height,
                     static_cast<int>(std::ceil(std::max(metrics.height(), symbolSide(look_)))))};
}

void Button::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) {
        painter.setOpacity(0.4);
    } else if (look_.style == ButtonStyle::plain && isDown()) {
        painter.setOpacity(0.7);
    }
    if (look_.style != ButtonStyle::plain) {
        paintSurface(painter, rect(),
                     {.shape = Shape::rounded(cornerRadius),
                      .fill = background(*this, look_.style),
                      .stroke = withOpacity(Qt::white, 0.08),
                      .lineWidth = 0.5});
    }
    const QColor color = look_.style == ButtonStyle::prominent ? QColor(Qt::white) : look_.color;
    const QFontMetricsF metrics(font());
    const double title = metrics.horizontalAdvance(text());
    double left = (width() - title - symbolWidth()) / 2;
    if (!look_.symbol.isEmpty()) {
        const auto symbol = symbolPixmap(look_.symbol, look_.font.size, look_.font.weight, color,
                                         devicePixelRatioF());
        painter.drawPixmap(QPointF(left, (height() - symbol.deviceIndependentSize().height()) / 2),
                           symbol);
        left += symbolWidth();
    }
    painter.setFont(font());
    painter.setPen(color);
    painter.drawText(QPointF(left, (height() - metrics.height()) / 2 + metrics.ascent()), text());
    if (focusRing_.isPaintedInside()) {
        painter.setOpacity(1);
        paintFocusRing(painter, rect(), cornerRadius, palette().color(QPalette::Highlight));
    }
}

} // namespace orlune::ui
