#include "ui/Toggle.h"

#include "ui/Stack.h"
#include "ui/Surface.h"
#include "ui/Symbol.h"
#include "ui/Text.h"

#include <QHBoxLayout>
#include <QPainter>

namespace orlune::ui {

namespace {

constexpr int boxSide = 16;
constexpr int boxGap = 9;
constexpr double boxRadius = 4.5;
/// Aligns the box with the title's line.
constexpr double boxTop = 1;

} // namespace

Toggle::Toggle(const QString& title, const QString& caption)
    : title_(title), caption_(new Text(caption, {.font = {.size = textSize::caption},
                                                 .color = ui::color(Style::secondary)})),
      words_(
          column({.spacing = 3, .alignment = Alignment::leading},
                 {new Text(title, {.font = {.size = textSize::body}, .lineLimit = 1}), caption_})) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(boxSide + boxGap, 0, 0, 0);
    layout->addWidget(words_);
    words_->setAttribute(Qt::WA_TransparentForMouseEvents);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed); // no wider than the clickable area
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    describe();
}

void Toggle::setCaption(const QString& caption) {
    if (caption_->text() != caption) {
        caption_->setText(caption);
        describe();
    }
}

void Toggle::describe() {
    setAccessibleName(title_);
    setAccessibleDescription(caption_->text());
}

QSize Toggle::sizeHint() const {
    return layout()->sizeHint();
}

void Toggle::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box(0, boxTop, boxSide, boxSide);
    const bool isOn = isChecked();
    const QColor tint = palette().color(QPalette::Highlight);
    paintSurface(painter, box,
                 {.shape = Shape::rounded(boxRadius),
                  .fill = isOn ? tint : withOpacity(Qt::white, underMouse() ? 0.14 : 0.09),
                  .stroke = withOpacity(Qt::white, isOn ? 0.12 : 0.22),
                  .lineWidth = 1});
    if (isOn) {
        constexpr double markSize = 10;
        const auto mark = symbolPixmap(QStringLiteral("checkmark"), markSize, Weight::bold,
                                       Qt::white, devicePixelRatioF());
        const QSizeF size = mark.deviceIndependentSize();
        painter.drawPixmap(box.center() - QPointF(size.width() / 2, size.height() / 2), mark);
    }
    if (focusRing_.isShown()) {
        paintFocusRing(painter, box, boxRadius, tint);
    }
}

} // namespace orlune::ui
