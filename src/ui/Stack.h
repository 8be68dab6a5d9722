// Rows and columns with spacing and padding, so that the code of a view reads like its layout.
// Everything made here is owned by the widget it is put into. Main thread. Distances are in points.
#pragma once

#include <QMargins>
#include <QWidget>

#include <initializer_list>

namespace orlune::ui {

/// Aligns the parts of a row vertically, those of a column horizontally.
enum class Alignment { leading, center };

/// A part of a row or column: a widget, or a spacer that takes the remaining room.
class Part {
  public:
    Part(QWidget* widget) : widget_(widget) {} // NOLINT(google-explicit-constructor): reads as list
    static Part spacer(int minimumLength) { return Part(minimumLength); }

    QWidget* widget() const { return widget_; }
    bool isSpacer() const { return widget_ == nullptr; }
    int minimumLength() const { return minimumLength_; }

  private:
    explicit Part(int minimumLength) : minimumLength_(minimumLength) {}

    QWidget* widget_ = nullptr;
    int minimumLength_ = 0;
};

inline Part spacer(int minimumLength = 0) {
    return Part::spacer(minimumLength);
}

struct StackStyle {
    int spacing = 0;
    Alignment alignment = Alignment::center;
};

/// Parts side by side. They keep their own width if there is enough room; hidden parts leave no
/// gap. A spacer is a part like the others, with a gap on either side.
QWidget* row(const StackStyle& style, std::initializer_list<Part> parts);
/// Parts stacked vertically.
QWidget* column(const StackStyle& style, std::initializer_list<Part> parts);
/// Adds a part at the end of a row or column.
void append(QWidget* stack, Part part);

struct Padding {
    int horizontal = 0;
    int vertical = 0;
};

QWidget* padded(QWidget* content, QMargins margins);
QWidget* padded(QWidget* content, Padding padding);
inline QWidget* padded(QWidget* content, int allEdges) {
    return padded(content, Padding{.horizontal = allEdges, .vertical = allEdges});
}

/// `content` centred in an area of this size.
QWidget* framed(QWidget* content, QSize size);
/// Takes the full width, with `content` at its start.
QWidget* fillingWidth(QWidget* content);

/// A horizontal line across a column.
QWidget* divider(const QColor& color, double thickness = 1);

} // namespace orlune::ui
