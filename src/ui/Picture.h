// Pictures that are painted once and kept: icons, symbols. Main thread.
#pragma once

#include <QPixmap>
#include <QSize>

#include <functional>

class QPainter;

namespace orlune::ui {

/// What `paint` paints on a transparent picture of `pixels`, with soft edges. Of a picture that was
/// painted on directly, Qt would keep its painting tools too: some 30 KB each.
QPixmap picture(QSize pixels, double devicePixelRatio, const std::function<void(QPainter&)>& paint);

} // namespace orlune::ui
