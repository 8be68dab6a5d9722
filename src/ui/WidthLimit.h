// Content that grows with its place only up to a width, and then stands in the middle of it. Main
// thread.
#pragma once

#include <QWidget>

namespace orlune::ui {

/// Takes all the width it is given; `content`, which it owns, gets at most `width` points of it.
QWidget* atMostWide(QWidget* content, int width);

} // namespace orlune::ui
