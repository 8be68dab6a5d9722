#include "settings/ActivationModeCard.h"

#include "ui/Stack.h"
#include "ui/Surface.h"
#include "ui/Symbol.h"
#include "ui/Text.h"
#include "visuals/OrlunePalette.h"

#include <QPainter>

#include <utility>

namespace orlune {

namespace {

constexpr double cornerRadius = 16;
constexpr double hoverScale = 1.012;
constexpr ui::Spring hoverSpring(/*response=*/0.18, /*dampingFraction=*/1.0);

QString shown(std::string_view words) {
    return QString::fromUtf8(words.data(), static_cast<qsizetype>(words.size()));
}

} // namespace

ActivationModeCard::ActivationModeCard(ActivationMode mode, std::function<void()> action) {
    constexpr ui::Font symbolFont{.size = ui::textSize::body};
    mark_ = new ui::Symbol(QStringLiteral("circle"), symbolFont);
    auto* symbol = new ui::Symbol(shown(glyph(mode)), symbolFont, ui::color(ui::Style::secondary));
    auto* column = ui::column(
        {.spacing = 9, .alignment = ui::Alignment::leading},
        {ui::row({}, {mark_, ui::spacer(), symbol}),
         new ui::Text(shown(title(mode)),
                      {.font = {.size = 13, .weight = ui::Weight::semibold}, .lineLimit = 1}),
         new ui::Text(shown(description(mode)), {.font = {.size = ui::textSize::caption},
                                                 .color = ui::color(ui::Style::secondary)})});
    content_.reset(ui::padded(ui::column({}, {ui::spacer(), column, ui::spacer()}), 14));

    setAccessibleName(shown(title(mode)) + QStringLiteral(". ") + shown(description(mode)));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QRadioButton::toggled, this, &ActivationModeCard::showSelection);
    connect(this, &QRadioButton::clicked, this, std::move(action));
    showSelection();
}

ActivationModeCard::~ActivationModeCard() = default;

void ActivationModeCard::setHint(const QString& hint) {
    setToolTip(hint);
    setAccessibleDescription(hint);
}

void ActivationModeCard::showSelection() {
    mark_->setName(isChecked() ? QStringLiteral("checkmark.circle.fill")
                               : QStringLiteral("circle"));
    mark_->setColor(isChecked() ? OrlunePalette::accentBright() : ui::color(ui::Style::tertiary));
    update();
}

QSize ActivationModeCard::sizeHint() const {
    return {content_->sizeHint().width() + 2 * overflow, minimumHeight + 2 * overflow};
}

QRect ActivationModeCard::card() const {
    return rect().adjusted(overflow, overflow, -overflow, -overflow);
}

bool ActivationModeCard::hitButton(const QPoint& position) const {
    return card().contains(position);
}

void ActivationModeCard::enterEvent(QEnterEvent* event) {
    QRadioButton::enterEvent(event);
    scaleTo(hoverScale);
}

void ActivationModeCard::leaveEvent(QEvent* event) {
    QRadioButton::leaveEvent(event);
    scaleTo(1);
}

void ActivationModeCard::scaleTo(double scale) {
    animation_.run(hoverSpring, [this, from = scale_, scale](double progress) {
        scale_ = from + (scale - from) * progress;
        update();
    });
}

void ActivationModeCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const QRectF edge = card();
    painter.translate(edge.center());
    painter.scale(scale_, scale_);
    painter.translate(-edge.center());
    const bool isSelected = isChecked();
    ui::paintSurface(painter, edge,
                     {.shape = ui::Shape::rounded(cornerRadius),
                      .fill = isSelected ? OrlunePalette::surfaceRaised()
                                         : ui::withOpacity(OrlunePalette::surface(), 0.5),
                      .stroke = isSelected ? ui::withOpacity(OrlunePalette::accent(), 0.68)
                                           : OrlunePalette::border(),
                      .lineWidth = isSelected ? 1 : 0.7});
    content_->resize(card().size());
    content_->render(&painter, card().topLeft(), {}, QWidget::DrawChildren);
    if (focusRing_.isShown()) {
        ui::paintFocusRing(painter, edge, cornerRadius, palette().color(QPalette::Highlight));
    }
}

} // namespace orlune
