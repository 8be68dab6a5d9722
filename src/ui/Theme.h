// What every window of the program has in common: dark, with one tint. Main thread.
#pragma once

class QColor;
class QWidget;

namespace orlune::ui {

/// Dark colours for `window` and all in it, text fields, menus and tool tips included; `tint` marks
/// what is chosen and what has the focus.
void applyDarkTheme(QWidget& window, const QColor& background, const QColor& tint);

} // namespace orlune::ui
