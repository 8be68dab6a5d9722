// What assistive technology sees of a view's parts. Main thread.
#pragma once

#include <QString>

class QWidget;

namespace orlune::ui {

/// The widget is decoration and is passed over.
void hideFromAccessibility(QWidget& widget);

/// The widget and all in it are one element with this label; setting it again changes the label.
void combineForAccessibility(QWidget& widget, const QString& label);

/// What is entered into the editor or removed from it is told as dots.
void concealFromAccessibility(QWidget& editor);

} // namespace orlune::ui
