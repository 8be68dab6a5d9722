#include "ui/Style.h"

namespace orlune::ui {

QColor color(Style style) {
    switch (style) {
    case Style::primary:
        return withOpacity(Qt::white, 0.92);
    case Style::secondary:
        return withOpacity(Qt::white, 0.62);
    case Style::tertiary:
        return withOpacity(Qt::white, 0.47);
    case Style::quaternary:
        return withOpacity(Qt::white, 0.1);
    }
    return {};
}

QColor orange() {
    return rgb(1.0, 0.624, 0.039);
}

QColor withOpacity(QColor color, double opacity) {
    color.setAlphaF(color.alphaF() * static_cast<float>(opacity));
    return color;
}

QColor rgb(double red, double green, double blue) {
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green),
                            static_cast<float>(blue));
}

} // namespace orlune::ui
