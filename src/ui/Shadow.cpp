#include "ui/Shadow.h"

#include <QPaintDevice>
#include <QPainter>

#include <cmath>
#include <cstdint>
#include <vector>

namespace orlune::ui {

namespace {

constexpr int channelCount = 4;

/// Replaces each of `count` pixels, `stride` bytes apart, by the mean of itself and `reach` pixels
/// on either side; pixels beyond the ends count as empty.
void averageLine(std::uint8_t* line, int count, std::ptrdiff_t stride, int reach,
                 std::vector<std::uint8_t>& copy) {
    const int window = 2 * reach + 1;
    copy.resize(static_cast<std::size_t>(count));
    for (int channel = 0; channel < channelCount; ++channel) {
        for (int index = 0; index < count; ++index) {
            copy[static_cast<std::size_t>(index)] = line[index * stride + channel];
        }
        const auto at = [&](int index) -> int {
            return index >= 0 && index < count ? copy[static_cast<std::size_t>(index)] : 0;
        };
        int sum = 0;
        for (int index = -reach; index < reach; ++index) {
            sum += at(index);
        }
        for (int index = 0; index < count; ++index) {
            sum += at(index + reach);
            line[index * stride + channel] = static_cast<std::uint8_t>((sum + window / 2) / window);
            sum -= at(index - reach);
        }
    }
}

} // namespace

QImage blurred(const QImage& image, double deviation) {
    QImage result = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    // Three means of width w have the variance (w² - 1) / 4.
    const int reach =
        static_cast<int>(std::lround((std::sqrt(4 * deviation * deviation + 1) - 1) / 2));
    if (reach < 1 || result.isNull()) {
        return result;
    }
    std::vector<std::uint8_t> copy;
    auto* pixels = result.bits();
    const std::ptrdiff_t rowStride = result.bytesPerLine();
    for (int pass = 0; pass < 3; ++pass) {
        for (int y = 0; y < result.height(); ++y) {
            averageLine(pixels + y * rowStride, result.width(), channelCount, reach, copy);
        }
        for (int x = 0; x < result.width(); ++x) {
            averageLine(pixels + x * channelCount, result.height(), rowStride, reach, copy);
        }
    }
    return result;
}

void Shadow::paint(QPainter& painter, const QPainterPath& outline) {
    const double scale = painter.device()->devicePixelRatioF();
    const double margin = std::ceil(radius_ * 1.5);
    const QRectF bounds =
        outline.boundingRect().adjusted(-margin, -margin, margin, margin).toAlignedRect();
    if (image_.isNull() || bounds != bounds_ || image_.devicePixelRatio() != scale) {
        QImage sharp((bounds.size() * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
        sharp.fill(Qt::transparent);
        {
            QPainter shape(&sharp);
            shape.setRenderHint(QPainter::Antialiasing);
            shape.scale(scale, scale);
            shape.translate(-bounds.topLeft());
            shape.fillPath(outline, color_);
        }
        image_ = blurred(sharp, radius_ / 2 * scale);
        image_.setDevicePixelRatio(scale);
        bounds_ = bounds;
    }
    painter.drawImage(bounds.topLeft() + offset_, image_);
}

} // namespace orlune::ui
