// A view that is scrolled when it does not fit into its place. Main thread.
#pragma once

class QScrollArea;
class QWidget;

namespace orlune::ui {

/// `content`, which it owns, takes all the width and at least the height of its place. What lies
/// behind shows through. The scroll bar lies over the padding of the content, which stays the same
/// on both sides.
QScrollArea* scrollView(QWidget* content);

} // namespace orlune::ui
