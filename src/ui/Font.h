// Fonts as the views specify them: a size in points, a weight, a design. One point is one logical
// pixel. Main thread, while the application exists.
#pragma once

#include <QFont>

namespace orlune::ui {

enum class Weight {
    regular = QFont::Normal,
    medium = QFont::Medium,
    semibold = QFont::DemiBold,
    bold = QFont::Bold,
};

enum class Design {
    standard,   ///< Inter, for which these sizes are made, else the desktop's own font
    rounded,    ///< a rounded variant where one is installed, else the standard design
    monospaced, ///< the desktop's own
};

struct Font {
    double size; ///< points
    Weight weight = Weight::regular;
    Design design = Design::standard;
    double tracking = 0; ///< added to the advance of every letter, points

    QFont resolved() const;
};

/// The named text styles of the system, with their sizes in points.
namespace textSize {
inline constexpr double title2 = 17;
inline constexpr double title3 = 15;
inline constexpr double body = 13;
inline constexpr double callout = 12;
inline constexpr double caption = 10;
} // namespace textSize

} // namespace orlune::ui
