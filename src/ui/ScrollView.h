// A view that scrolls when its content does not fit. Main thread.
#pragma once

class QScrollArea;
class QWidget;

namespace orlune::ui {

/// Owns `content`, which gets the full width and at least the full height. The background is
/// transparent. The scroll bar lies over the content's padding, so that both margins stay equal.
QScrollArea* scrollView(QWidget* content);

} // namespace orlune::ui
