// Pictures that are painted once and cached: icons, symbols. Main thread.
#pragma once

#include <QPixmap>
#include <QSize>

#include <functional>

class QPainter;

namespace orlune::ui {

/// A transparent picture of `pixels`, painted by `paint` with antialiasing. If the picture itself
/// were painted on, Qt would also keep its painting tools: some 30 KB each.
QPixmap picture(QSize pixels, double devicePixelRatio, const std::function<void(QPainter&)>& paint);

} // namespace orlune::ui
