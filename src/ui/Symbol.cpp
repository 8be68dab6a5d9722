#include "ui/Symbol.h"

#include "ui/AccessibleElement.h"
#include "ui/Picture.h"

#include <QFile>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <array>
#include <cmath>

// The drawings are in a static library, whose resources must be initialised by name. The macro only
// works outside of namespaces.
static void initializeSymbols() {
    Q_INIT_RESOURCE(symbols);
}

namespace orlune::ui {

namespace {

/// The width of a line on the grid of 24 × 24.
QByteArray strokeWidth(Weight weight) {
    switch (weight) {
    case Weight::regular:
        return "1.7";
    case Weight::medium:
        return "1.9";
    case Weight::semibold:
        return "2.1";
    case Weight::bold:
        return "2.5";
    }
    return "1.7";
}

QByteArray drawing(const QString& name, Weight weight) {
    initializeSymbols();
    QFile file(QStringLiteral(":/orlune/symbols/%1.svg").arg(name));
    if (!file.open(QIODevice::ReadOnly)) {
        Q_ASSERT_X(false, "Symbol", qPrintable("no symbol is called " + name));
        return {};
    }
    return file.readAll().replace("@WEIGHT@", strokeWidth(weight));
}

/// A square image; its side of `side` points need not be whole pixels at this scale.
QPixmap drawn(const QString& name, double side, Weight weight, const QColor& color,
              qreal devicePixelRatio) {
    const int pixels = static_cast<int>(std::ceil(side * devicePixelRatio));
    return picture({pixels, pixels}, devicePixelRatio, [&](QPainter& painter) {
        const QRectF square(0, 0, side, side);
        QSvgRenderer(drawing(name, weight)).render(&painter, square);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(QRect(0, 0, pixels, pixels), color);
    });
}

int sideLength(double pointSize) {
    return static_cast<int>(std::lround(1.25 * pointSize));
}

} // namespace

Symbol::Symbol(const QString& name, const Font& font, const QColor& color)
    : name_(name), font_(font), color_(color) {
    const int side = sideLength(font.size);
    setFixedSize(side, side);
    hideFromAccessibility(*this);
}

void Symbol::setName(const QString& name) {
    if (name_ != name) {
        name_ = name;
        update();
    }
}

void Symbol::setColor(const QColor& color) {
    if (color_ != color) {
        color_ = color;
        update();
    }
}

void Symbol::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.drawPixmap(0, 0,
                       symbolPixmap(name_, font_.size, font_.weight, color_, devicePixelRatioF()));
}

QPixmap symbolPixmap(const QString& name, double pointSize, Weight weight, const QColor& color,
                     qreal devicePixelRatio) {
    const int side = sideLength(pointSize);
    const auto key = QStringLiteral("orlune symbol %1 %2 %3 %4 %5")
                         .arg(name)
                         .arg(side)
                         .arg(static_cast<int>(weight))
                         .arg(color.rgba(), 0, 16)
                         .arg(devicePixelRatio);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = drawn(name, side, weight, color, devicePixelRatio);
        QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

QIcon symbolIcon(const QString& name, const QColor& color, Weight weight) {
    constexpr std::array sides{16, 22, 24, 32, 44, 48, 64};
    QIcon icon;
    for (const int side : sides) {
        icon.addPixmap(drawn(name, side, weight, color, /*devicePixelRatio=*/1));
    }
    return icon;
}

} // namespace orlune::ui
