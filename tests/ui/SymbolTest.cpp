// Every symbol that the views name has a drawing, which takes the given colour.

#include "ui/Symbol.h"

#include <QImage>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace orlune::ui {
namespace {

class SymbolTest : public testing::TestWithParam<const char*> {};

TEST_P(SymbolTest, isDrawnInItsColourInEveryWeight) {
    for (const auto weight : {Weight::regular, Weight::medium, Weight::semibold, Weight::bold}) {
        constexpr double scale = 1.25;
        const QImage image = symbolPixmap(GetParam(), 13, weight, Qt::red, scale).toImage();
        ASSERT_EQ(image.size(), QSize(20, 20)) << "16 points";
        int inked = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor pixel = image.pixelColor(x, y);
                inked += pixel.alpha() > 128;
                EXPECT_TRUE(pixel.alpha() == 0 || (pixel.red() > 0 && pixel.blue() == 0));
            }
        }
        EXPECT_GT(inked, 20);
        EXPECT_LT(inked, 350);
    }
}

INSTANTIATE_TEST_SUITE_P(
    all, SymbolTest,
    testing::Values("waveform", "checkmark", "exclamationmark.circle",
                    "exclamationmark.circle.fill", "checkmark.message", "checkmark.message.fill",
                    "questionmark.circle", "waveform.circle", "waveform.circle.fill",
                    "ellipsis.circle.fill", "checkmark.circle.fill", "circle", "circle.dashed",
                    "cursorarrow.click", "hand.tap", "lock.shield.fill", "bolt.fill",
                    "wand.and.sparkles", "key.fill", "key.horizontal", "mic.fill",
                    "cursorarrow.motionlines", "checkmark.shield", "sparkles", "gearshape"),
    [](const auto& row) {
        std::string name = row.param;
        std::ranges::replace(name, '.', '_');
        return name;
    });

} // namespace
} // namespace orlune::ui
