// What every window of the program has in common: dark, with one tint. Main thread.
#pragma once

class QColor;
class QMenu;
class QWidget;

namespace orlune::ui {

/// Dark colours for `window` and all in it, text fields, menus and tool tips included; `tint` marks
/// what is chosen and what has the focus.
void applyDarkTheme(QWidget& window, const QColor& background, const QColor& tint);
/// A menu is a window of its own: gives it the theme of the widget that it belongs to, a little
/// lighter.
void adoptTheme(QMenu& menu);

} // namespace orlune::ui
