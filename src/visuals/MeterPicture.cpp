#include "visuals/MeterPicture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

namespace orlune {

namespace {

/// A share from 0 to 1, in integer parts.
constexpr std::uint32_t whole = 256;

std::uint32_t parts(double share) {
    return static_cast<std::uint32_t>(std::lround(share * whole));
}

/// Blends `to`, which is opaque, over `from` with this share. Two channels at a time.
QRgb mixed(QRgb from, QRgb to, std::uint32_t covered) {
    const auto twoChannels = [=](unsigned int shift) {
        constexpr std::uint32_t mask = 0x00FF00FF;
        return ((((from >> shift) & mask) * (whole - covered) + ((to >> shift) & mask) * covered)
                / whole)
               & mask;
    };
    return twoChannels(0) | twoChannels(8) << 8;
}

/// The intensity of a blurred edge at this distance: 0 far outside, 1 far inside, close to a
/// Gaussian's.
double blurredEdge(double distance, double deviation) {
    constexpr double reach = 2.2; // deviations
    const double share = std::clamp(0.5 + distance / (2 * reach * deviation), 0.0, 1.0);
    return share * share * (3 - 2 * share);
}

/// Blends `color` into the pixels from `first` on, each with its own share of `most`.
void mixRow(QRgb* first, std::span<const std::uint32_t> covered, std::uint32_t most, QRgb color) {
    for (const std::uint32_t share : covered) {
        *first = mixed(*first, color, share * most / whole);
        ++first;
    }
}

} // namespace

void paintBar(QImage& image, const GlowingBar& bar) {
    const auto& rectangle = bar.rectangle;
    const QPointF center = rectangle.center();
    const double radius = rectangle.width() / 2;
    const double straight = rectangle.height() / 2 - radius; // above and below the centre
    const double deviation = bar.glowRadius / 2;
    const double reach = std::max(1.5 * bar.glowRadius, 1.0);
    const QRect touched =
        rectangle.adjusted(-reach, -reach, reach, reach).toAlignedRect() & image.rect();
    const QRect own = rectangle.adjusted(-1, -1, 1, 1).toAlignedRect() & image.rect();
    std::vector<std::uint32_t> across;
    for (int x = touched.left(); x <= touched.right(); ++x) {
        across.push_back(parts(blurredEdge(radius - std::abs(x + 0.5 - center.x()), deviation)));
    }
    for (int y = touched.top(); y <= touched.bottom(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        const double down = y + 0.5 - center.y();
        const double glow =
            bar.glowOpacity * blurredEdge(rectangle.height() / 2 - std::abs(down), deviation);
        mixRow(line + touched.left(), across, parts(glow), bar.glow.rgba());
        const QRgb color = mixed(bar.top.rgba(), bar.bottom.rgba(),
                                 parts(std::clamp(down / rectangle.height() + 0.5, 0.0, 1.0)));
        const double beyond = std::max(std::abs(down) - straight, 0.0);
        for (int x = own.left(); x <= own.right() && beyond < radius + 0.5; ++x) {
            const double aside = x + 0.5 - center.x();
            const double inside = radius + 0.5 - std::sqrt(aside * aside + beyond * beyond);
            line[x] = mixed(line[x], color, parts(std::clamp(inside, 0.0, 1.0)));
        }
    }
}

} // namespace orlune
