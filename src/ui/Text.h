// A text in one font and colour, on one line or wrapped to a limited number of lines; text that
// does not fit ends in an ellipsis. A label for assistive technology, with the whole text. Main
// thread.
#pragma once

#include "ui/Font.h"
#include "ui/Style.h"

#include <QLabel>

namespace orlune::ui {

struct TextStyle {
    Font font;
    QColor color = ui::color(Style::primary);
    int lineLimit = 0; ///< 0: no limit
    /// The smallest scale of a one-line text before it is cut; 1: never scaled.
    double minimumScale = 1;
    double lineSpacing = 0; ///< between two lines, points
    Qt::AlignmentFlag alignment = Qt::AlignLeft;
};

class Text final : public QLabel {
  public:
    Text(const QString& text, const TextStyle& style);

    void setColor(const QColor& color);
    void setLineLimit(int lineLimit);
    void setMinimumScale(double minimumScale);

    /// The distance from the upper edge to the baseline of the first line, points.
    double firstBaseline() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    double lineHeight() const;
    double heightOf(int lineCount) const;
    double naturalWidth() const;
    QFont fittingFont() const;

    TextStyle style_;
};

} // namespace orlune::ui
