// The program's own symbols, by name: drawn on one grid, tinted when shown. A symbol is decoration,
// which assistive technology skips. Main thread. A name without a drawing is a caller's mistake: an
// assertion fails, or nothing is shown.
#pragma once

#include "ui/Font.h"
#include "ui/Style.h"

#include <QIcon>
#include <QPixmap>
#include <QString>
#include <QWidget>

namespace orlune::ui {

/// A square with a side of 1.25 × the font's size, rounded to whole points; the drawing leaves a
/// twelfth of it free on each side.
class Symbol final : public QWidget {
  public:
    /// Only the size and weight of the font are used.
    Symbol(const QString& name, const Font& font, const QColor& color = ui::color(Style::primary));

    void setName(const QString& name);
    void setColor(const QColor& color);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QString name_;
    Font font_;
    QColor color_;
};

/// The symbol for use next to text of `pointSize`; cached.
QPixmap symbolPixmap(const QString& name, double pointSize, Weight weight, const QColor& color,
                     qreal devicePixelRatio);

/// For menus and the tray: drawn separately for each of their usual sizes, 16 to 64 pixels.
QIcon symbolIcon(const QString& name, const QColor& color, Weight weight = Weight::regular);

} // namespace orlune::ui
