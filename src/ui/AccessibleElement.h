// Controls what assistive technology sees of a view's parts. Main thread.
#pragma once

#include <QString>

class QWidget;

namespace orlune::ui {

/// Marks the widget as decoration, which assistive technology skips.
void hideFromAccessibility(QWidget& widget);

/// Presents the widget and its content as one element with this label; another call changes the
/// label.
void combineForAccessibility(QWidget& widget, const QString& label);

/// Announces text that is entered into the editor or removed from it as dots.
void concealFromAccessibility(QWidget& editor);

} // namespace orlune::ui
