#include "visuals/OrlunePalette.h"

#include "ui/Style.h"

namespace orlune::OrlunePalette {

const QColor& background() {
    static const QColor color = ui::rgb(0.035, 0.031, 0.043);
    return color;
}

const QColor& surface() {
    static const QColor color = ui::rgb(0.075, 0.065, 0.087);
    return color;
}

const QColor& surfaceRaised() {
    static const QColor color = ui::rgb(0.105, 0.087, 0.122);
    return color;
}

const QColor& border() {
    static const QColor color = ui::withOpacity(Qt::white, 0.075);
    return color;
}

const QColor& accent() {
    static const QColor color = ui::rgb(0.52, 0.38, 0.65);
    return color;
}

const QColor& accentBright() {
    static const QColor color = ui::rgb(0.76, 0.67, 0.83);
    return color;
}

const QColor& success() {
    static const QColor color = ui::rgb(0.46, 0.66, 0.54);
    return color;
}

const QColor& orbGraphite() {
    static const QColor color = ui::rgb(0.1, 0.105, 0.115);
    return color;
}

const QColor& orbPearl() {
    static const QColor color = ui::rgb(0.91, 0.9, 0.86);
    return color;
}

} // namespace orlune::OrlunePalette
