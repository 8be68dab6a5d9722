// A view that is scrolled when it does not fit into its place. Main thread.
#pragma once

class QScrollArea;
class QWidget;

namespace orlune::ui {

/// `content`, which it owns, takes all the width and at least the height of its place. What lies
/// behind shows through.
QScrollArea* scrollView(QWidget* content);

} // namespace orlune::ui
