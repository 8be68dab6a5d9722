#include "visuals/AuroraBackdrop.h"

#include "ui/AccessibleElement.h"
#include "ui/Style.h"
#include "visuals/OrlunePalette.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace orlune {

namespace {

/// Colour components from 0 to 255, with fractions.
struct Channels {
    float red;
    float green;
    float blue;
};

Channels channels(const QColor& color) {
    return {255 * color.redF(), 255 * color.greenF(), 255 * color.blueF()};
}

/// A radial gradient from a colour to nothing. Radii are in points.
struct Glow {
    float centerX;
    float centerY;
    float startRadius;
    float endRadius;
    Channels color;
    float opacity;

    /// The opacity of the colour at a point, 0 to 1. Without branches, so that compilers can
    /// vectorise.
    float share(float x, float y) const {
        const float horizontal = x - centerX;
        const float vertical = y - centerY;
        const float radius = std::sqrt(horizontal * horizontal + vertical * vertical);
        const float inside = std::min(endRadius - radius, endRadius - startRadius);
        return opacity / (endRadius - startRadius) * std::max(inside, 0.0f);
    }
};

Channels blend(const Channels& below, const Channels& above, float share) {
    return {below.red + share * (above.red - below.red),
            below.green + share * (above.green - below.green),
            below.blue + share * (above.blue - below.blue)};
}

/// Random values from 0 to 1, without a visible pattern.
float noise(int x, int y) {
    const auto fraction = [](float value) {
        return value - static_cast<float>(static_cast<int>(value));
    };
    return fraction(
        52.9829189f
        * fraction(0.06711056f * static_cast<float>(x) + 0.00583715f * static_cast<float>(y)));
}

QSize pixelSize(QSize size, double scale) {
    return {static_cast<int>(std::ceil(size.width() * scale)),
            static_cast<int>(std::ceil(size.height() * scale))};
}

/// The glows are so faint that eight bits show them as rings. Rounding each pixel up or down at
/// random keeps them smooth.
QImage drawn(QSize size, double scale, bool active) {
    const Glow top{
        .centerX = 0,
        .centerY = 0,
        .startRadius = 10,
        .endRadius = 520,
        .color = channels(OrlunePalette::accent()),
        .opacity = active ? 0.18f : 0.1f,
    };
    const Glow bottom{
        .centerX = static_cast<float>(size.width()),
        .centerY = static_cast<float>(size.height()),
        .startRadius = 20,
        .endRadius = 440,
        .color = channels(ui::rgb(0.22, 0.17, 0.26)),
        .opacity = 0.16f,
    };
    // In whole levels, so that areas without a glow stay even.
    const QColor whole(OrlunePalette::background().rgb());
    const Channels background{static_cast<float>(whole.red()), static_cast<float>(whole.green()),
                              static_cast<float>(whole.blue())};
    QImage image(pixelSize(size, scale), QImage::Format_RGB32);
    const float step = 1 / static_cast<float>(scale);
    const int width = image.width();
    for (int row = 0; row < image.height(); ++row) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(row));
        const float y = (static_cast<float>(row) + 0.5f) * step;
        for (int column = 0; column < width; ++column) {
            const float x = (static_cast<float>(column) + 0.5f) * step;
            const float topShare = top.share(x, y);
            const float bottomShare = bottom.share(x, y);
            const Channels color =
                blend(blend(background, top.color, topShare), bottom.color, bottomShare);
            const float chance = noise(column, row);
            const auto level = [chance](float channel) {
                return static_cast<int>(channel + chance);
            };
            line[column] = qRgb(level(color.red), level(color.green), level(color.blue));
        }
    }
    image.setDevicePixelRatio(scale);
    return image;
}

} // namespace

AuroraBackdrop::AuroraBackdrop(bool active) : active_(active) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    ui::hideFromAccessibility(*this);
}

void AuroraBackdrop::setActive(bool active) {
    if (active_ != active) {
        active_ = active;
        picture_ = {};
        update();
    }
}

void AuroraBackdrop::paintEvent(QPaintEvent* /*event*/) {
    const double scale = devicePixelRatioF();
    if (picture_.size() != pixelSize(size(), scale) || picture_.devicePixelRatio() != scale) {
        picture_ = drawn(size(), scale, active_);
    }
    QPainter painter(this);
    painter.drawImage(0, 0, picture_);
}

void AuroraBackdrop::hideEvent(QHideEvent* /*event*/) {
    picture_ = {};
}

} // namespace orlune
