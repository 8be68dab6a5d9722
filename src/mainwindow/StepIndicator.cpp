#include "mainwindow/StepIndicator.h"

#include "ui/AccessibleElement.h"
#include "ui/Shape.h"
#include "ui/Style.h"
#include "visuals/OrlunePalette.h"

#include <QPainter>

#include <algorithm>

namespace orlune {

namespace {

constexpr int capsuleHeight = 7;
constexpr int narrowWidth = 7;
constexpr int wideWidth = 22;
constexpr int spacing = 7;
constexpr ui::Spring spring(/*response=*/0.5, /*dampingFraction=*/0.85);

double between(double from, double to, double progress) {
    return from + (to - from) * progress;
}

QColor blend(const QColor& from, const QColor& to, double progress) {
    const auto channel = [progress](float first, float second) {
        return static_cast<float>(std::clamp(between(first, second, progress), 0.0, 1.0));
    };
    return QColor::fromRgbF(channel(from.redF(), to.redF()), channel(from.greenF(), to.greenF()),
                            channel(from.blueF(), to.blueF()), channel(from.alphaF(), to.alphaF()));
}

} // namespace

StepIndicator::StepIndicator() {
    setFixedSize(wideWidth + (stepCount - 1) * (narrowWidth + spacing), capsuleHeight);
    setStep(0);
}

StepIndicator::Looks StepIndicator::looks(int step) {
    Looks result;
    for (int index = 0; index < stepCount; ++index) {
        result[static_cast<std::size_t>(index)] = {.presence = index == step ? 1.0 : 0.0,
                                                   .reach = index <= step ? 1.0 : 0.0};
    }
    return result;
}

void StepIndicator::setStep(int step) {
    ui::combineForAccessibility(*this,
                                QStringLiteral("Step %1 of %2").arg(step + 1).arg(stepCount));
    from_ = shown_;
    to_ = looks(step);
    if (!isVisible()) {
        animation_.stop();
        shown_ = to_;
        return;
    }
    animation_.run(spring, [this](double progress) {
        for (std::size_t index = 0; index < shown_.size(); ++index) {
            shown_[index] = {.presence =
                                 between(from_[index].presence, to_[index].presence, progress),
                             .reach = between(from_[index].reach, to_[index].reach, progress)};
        }
        update();
    });
}

void StepIndicator::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor ahead = ui::withOpacity(ui::color(ui::Style::secondary), 0.18);
    double left = 0;
    for (const auto& look : shown_) {
        const double width = between(narrowWidth, wideWidth, look.presence);
        painter.fillPath(ui::capsule({left, 0, width, capsuleHeight}),
                         blend(ahead, OrlunePalette::accent(), look.reach));
        left += width + spacing;
    }
}

} // namespace orlune
