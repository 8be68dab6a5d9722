#include "ui/CrossFade.h"

#include <QGraphicsOpacityEffect>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>

namespace orlune::ui {

namespace {

/// Looks like 1. At exactly 1 the effect would paint its widget directly, and effects of widgets
/// inside could not paint then: content may fade while its own content does.
constexpr double opaque = 0.999;

} // namespace

CrossFade::CrossFade(QWidget* content)
    : content_(content), effect_(new QGraphicsOpacityEffect(content)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(content);
    effect_->setEnabled(false);
    content->setGraphicsEffect(effect_);
}

void CrossFade::change(const Spring& spring, const std::function<void()>& apply, QPoint travel) {
    if (!isVisible()) {
        finish();
        apply();
        return;
    }
    QPixmap picture(size() * devicePixelRatioF());
    picture.setDevicePixelRatio(devicePixelRatioF());
    picture.fill(Qt::transparent);
    render(&picture, {}, {}, DrawChildren);
    previous_ = picture;
    apply();
    layout()->activate(); // before the content is moved, since a layout would reset its position
    travel_ = travel;
    effect_->setEnabled(true);
    animation_.run(
        spring,
        [this](double progress) {
            progress_ = progress;
            effect_->setOpacity(std::clamp(progress, 0.0, opaque));
            content_->move(((1 - progress) * travel_).toPoint());
            update();
        },
        [this] { finish(); });
}

void CrossFade::paintEvent(QPaintEvent* /*event*/) {
    if (previous_.isNull()) {
        return;
    }
    QPainter painter(this);
    painter.setOpacity(std::clamp(1 - progress_, 0.0, 1.0));
    // The content may have changed its size meanwhile; the picture scales around its centre.
    const QSizeF shown = previous_.deviceIndependentSize();
    const QPointF middle((width() - shown.width()) / 2, (height() - shown.height()) / 2);
    painter.drawPixmap(middle - progress_ * travel_, previous_);
}

void CrossFade::hideEvent(QHideEvent* /*event*/) {
    settle();
}

void CrossFade::settle() {
    animation_.stop();
    finish();
}

void CrossFade::finish() {
    previous_ = {};
    progress_ = 1;
    content_->move(0, 0);
    effect_->setEnabled(false);
    update();
}

bool isFading(const QWidget& view) {
    for (const auto* part = &view; part; part = part->parentWidget()) {
        if (const auto* effect = part->graphicsEffect(); effect && effect->isEnabled()) {
            return true;
        }
    }
    return false;
}

} // namespace orlune::ui
