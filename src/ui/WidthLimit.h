// Content that grows with its place only up to a width, and is centred beyond that. Main thread.
#pragma once

#include <QWidget>

namespace orlune::ui {

/// Takes the full width; gives `content`, which it owns, at most `width` points of it.
QWidget* atMostWide(QWidget* content, int width);

} // namespace orlune::ui
