// The look that all windows share: dark, with one tint. Main thread.
#pragma once

class QColor;
class QMenu;
class QWidget;

namespace orlune::ui {

/// Dark colours for `window` and its content, including text fields, menus and tool tips; `tint`
/// marks selection and focus.
void applyDarkTheme(QWidget& window, const QColor& background, const QColor& tint);
/// A menu is a separate window: gives it the theme of its owner, slightly lighter.
void adoptTheme(QMenu& menu);

} // namespace orlune::ui
