// A text in one font and colour, on one line or wrapped over as many as it may take; what does not
// fit ends in an ellipsis. A label to assistive technology, with the whole text. Main thread.
#pragma once

#include "ui/Font.h"
#include "ui/Style.h"

#include <QLabel>

namespace orlune::ui {

struct TextStyle {
    Font font;
    QColor color = ui::color(Style::primary);
    int lineLimit = 0; ///< 0: as many lines as it needs
    /// How far a text of one line may be made smaller before it is cut, 1: not at all.
    double minimumScale = 1;
    double lineSpacing = 0; ///< between one line and the next, points
    Qt::AlignmentFlag alignment = Qt::AlignLeft;
};

class Text final : public QLabel {
  public:
    Text(const QString& text, const TextStyle& style);

    void setColor(const QColor& color);
    void setLineLimit(int lineLimit);
    void setMinimumScale(double minimumScale);

    /// From the upper edge down to the line that the letters of the first line stand on, points.
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
