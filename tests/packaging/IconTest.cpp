// The icon of menus and docks shows the same mark as the windows.
#include "visuals/OrluneMark.h"

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace orlune {
namespace {

constexpr int canvas = 512;
constexpr int margin = 32;

template <typename Draw>
QImage picture(Draw draw) {
    QImage image(canvas, canvas, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::gray);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    draw(painter);
    return image;
}

int difference(QRgb left, QRgb right) {
    return std::max({std::abs(qRed(left) - qRed(right)), std::abs(qGreen(left) - qGreen(right)),
                     std::abs(qBlue(left) - qBlue(right))});
}

TEST(IconTest, theIconIsTheMark) {
    // Of 255. The rim and rounded coordinates cause smaller differences along edges.
    constexpr int visible = 48;
    QSvgRenderer drawing(QStringLiteral(ORLUNE_ICON));
    const QImage icon = picture([&](QPainter& painter) { drawing.render(&painter); });
    const QImage mark = picture([](QPainter& painter) {
        constexpr int size = canvas - 2 * margin;
        OrluneMark::paint(painter, QRectF(margin, margin, size, size));
    });
    int differing = 0;
    for (int y = 0; y < canvas; ++y) {
        for (int x = 0; x < canvas; ++x) {
            differing += difference(icon.pixel(x, y), mark.pixel(x, y)) > visible ? 1 : 0;
        }
    }
    EXPECT_EQ(differing, 0) << "pixels";
}

} // namespace
} // namespace orlune
