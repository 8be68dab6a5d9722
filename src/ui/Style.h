// The colours of text and symbols on the program's dark windows. Plain values; main thread.
#pragma once

#include <QColor>

namespace orlune::ui {

/// The prominence of text, highest first.
enum class Style { primary, secondary, tertiary, quaternary };

/// White with an opacity. On the windows' background the first three have a contrast of at least
/// 4.5 to 1, which small text needs; the last one is for areas, not for text.
QColor color(Style style);

/// The warning colour of the system.
QColor orange();

/// `color` with its opacity multiplied by `opacity`, 0 to 1.
QColor withOpacity(QColor color, double opacity);

/// From components of 0 to 1 in sRGB.
QColor rgb(double red, double green, double blue);

} // namespace orlune::ui
