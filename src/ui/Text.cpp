#include "ui/Text.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace orlune::ui {

namespace {

/// The text broken into lines of `width`, at most `limit` of them.
class Lines {
  public:
    Lines(const QString& text, const QFont& font, double width, int limit) : font_(font) {
        // Laying out minutes of speech only to show its first lines would keep the user waiting.
        constexpr qsizetype longestLine = 400;
        QString broken = limit > 0 ? text.left(limit * longestLine) : text;
        isCut_ = broken.size() < text.size();
        broken.replace(u'\n', limit == 1 ? QChar(u' ') : QChar(QChar::LineSeparator));
        layout_.setText(broken);
        layout_.setFont(font);
        QTextOption option;
        option.setWrapMode(limit == 1 ? QTextOption::NoWrap
                                      : QTextOption::WrapAtWordBoundaryOrAnywhere);
        layout_.setTextOption(option);
        layout_.beginLayout();
        for (auto line = layout_.createLine(); line.isValid(); line = layout_.createLine()) {
            if (limit > 0 && count_ == limit) {
                isCut_ = true;
                break;
            }
            line.setLineWidth(width);
            ++count_;
        }
        layout_.endLayout();
        if (count_ > 0 && layout_.lineAt(count_ - 1).naturalTextWidth() > width) {
            isCut_ = true;
        }
    }

    int count() const { return count_; }
    double width(int index) const { return layout_.lineAt(index).naturalTextWidth(); }

    /// The rest of the text from the last line on, shortened; empty when everything fits.
    QString shortenedEnd(double width) const {
        if (!isCut_) {
            return {};
        }
        auto rest = layout_.text().mid(layout_.lineAt(count_ - 1).textStart());
        rest.replace(QChar(QChar::LineSeparator), QChar(u' '));
        return QFontMetricsF(font_).elidedText(rest, Qt::ElideRight, width);
    }

    void draw(QPainter& painter, int index, QPointF topLeft) const {
        const auto line = layout_.lineAt(index);
        line.draw(&painter, topLeft - line.position());
    }

  private:
    QFont font_;
    QTextLayout layout_;
    int count_ = 0;
    bool isCut_ = false;
};

} // namespace

Text::Text(const QString& text, const TextStyle& style) : style_(style) {
    setTextFormat(Qt::PlainText);
    setFont(style.font.resolved());
    setWordWrap(style.lineLimit != 1); // makes the height follow the width
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setText(text);
}

void Text::setColor(const QColor& color) {
    style_.color = color;
    update();
}

void Text::setLineLimit(int lineLimit) {
    style_.lineLimit = lineLimit;
    setWordWrap(lineLimit != 1);
    updateGeometry();
    update();
}

void Text::setMinimumScale(double minimumScale) {
    if (style_.minimumScale != minimumScale) {
        style_.minimumScale = minimumScale;
        update();
    }
}

/// A text too long for its line is drawn smaller, and is cut if that is not enough.
QFont Text::fittingFont() const {
    QFont fitting = font();
    if (style_.minimumScale < 1 && style_.lineLimit == 1) {
        const double scale = (width() - 0.5) / naturalWidth();
        if (scale < 1) {
            fitting.setPointSizeF(fitting.pointSizeF() * std::max(scale, style_.minimumScale));
        }
    }
    return fitting;
}

double Text::lineHeight() const {
    return QFontMetricsF(font()).height();
}

double Text::heightOf(int lineCount) const {
    return lineCount * lineHeight() + std::max(0, lineCount - 1) * style_.lineSpacing;
}

double Text::naturalWidth() const {
    constexpr double unlimited = 1e6;
    const Lines lines(text(), font(), unlimited, style_.lineLimit);
    double width = 0;
    for (int index = 0; index < lines.count(); ++index) {
        width = std::max(width, lines.width(index));
    }
    return width;
}

double Text::firstBaseline() const {
    return QFontMetricsF(font()).ascent();
}

QSize Text::sizeHint() const {
    const int width = static_cast<int>(std::ceil(naturalWidth()));
    return {width, heightForWidth(std::max(width, 1))};
}

QSize Text::minimumSizeHint() const {
    return {0, static_cast<int>(std::ceil(lineHeight()))};
}

int Text::heightForWidth(int width) const {
    const Lines lines(text(), font(), width, style_.lineLimit);
    return static_cast<int>(std::ceil(heightOf(std::max(1, lines.count()))));
}

void Text::paintEvent(QPaintEvent* /*event*/) {
    const QFont drawn = fittingFont();
    const QFontMetricsF metrics(drawn);
    QPainter painter(this);
    painter.setFont(drawn);
    painter.setPen(style_.color);
    const double advance = lineHeight() + style_.lineSpacing;
    // With less height than it wants, it shows the lines that fit.
    const int fitting =
        std::max(1, static_cast<int>((height() + style_.lineSpacing + 0.5) / advance));
    const int limit = style_.lineLimit > 0 ? std::min(style_.lineLimit, fitting) : fitting;
    const Lines lines(text(), drawn, width(), limit);
    const auto shortened = lines.shortenedEnd(width());
    // Smaller letters keep the same baseline.
    const double baseline = firstBaseline();
    double top = std::max(0.0, (height() - heightOf(lines.count())) / 2);
    for (int index = 0; index < lines.count(); ++index, top += advance) {
        const bool isShortened = index == lines.count() - 1 && !shortened.isEmpty();
        const double used = isShortened ? metrics.horizontalAdvance(shortened) : lines.width(index);
        const double left =
            style_.alignment == Qt::AlignHCenter ? std::max(0.0, (width() - used) / 2) : 0;
        if (isShortened) {
            painter.drawText(QPointF(left, top + baseline), shortened);
        } else {
            lines.draw(painter, index, {left, top + baseline - metrics.ascent()});
        }
    }
}

} // namespace orlune::ui
