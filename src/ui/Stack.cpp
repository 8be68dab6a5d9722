#include "ui/Stack.h"

#include <QBoxLayout>
#include <QPainter>

#include <cmath>

namespace orlune::ui {

namespace {

/// A line thinner than a pixel is drawn with reduced opacity.
class Divider final : public QWidget {
  public:
    Divider(const QColor& color, double thickness) : color_(color), thickness_(thickness) {
        setFixedHeight(static_cast<int>(std::ceil(thickness)));
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

  protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.fillRect(QRectF(0, (height() - thickness_) / 2, width(), thickness_), color_);
    }

  private:
    QColor color_;
    double thickness_;
};

bool takesWidth(const QWidget& widget) {
    return (widget.sizePolicy().horizontalPolicy() & QSizePolicy::ExpandFlag) != 0;
}

/// Makes the container expand horizontally when one of its parts does.
void shareWidth(QWidget& container, bool isWanted) {
    if (isWanted) {
        container.setSizePolicy(QSizePolicy::Expanding, container.sizePolicy().verticalPolicy());
    }
}

Qt::Alignment flags(Alignment alignment, bool isRow, const QWidget& part) {
    const bool isLeading = alignment == Alignment::leading;
    if (isRow) {
        return isLeading ? Qt::AlignTop : Qt::AlignVCenter;
    }
    if (takesWidth(part)) {
        return {};
    }
    return isLeading ? Qt::AlignLeft : Qt::AlignHCenter;
}

/// Qt leaves out the spacing next to an item that reports itself as empty.
class Spacer final : public QSpacerItem {
  public:
    using QSpacerItem::QSpacerItem;
    bool isEmpty() const override { return false; }
};

/// Stores the alignment of its parts.
class Stack final : public QWidget {
  public:
    Stack(bool isRow, const StackStyle& style) : style_(style), isRow_(isRow) {
        auto* layout =
            new QBoxLayout(isRow ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(style.spacing);
    }

    void append(const Part& part) {
        auto* box = static_cast<QBoxLayout*>(layout());
        if (part.isSpacer()) {
            const int length = part.minimumLength();
            box->addSpacerItem(isRow_ ? new Spacer(length, 0, QSizePolicy::MinimumExpanding)
                                      : new Spacer(0, length, QSizePolicy::Minimum,
                                                   QSizePolicy::MinimumExpanding));
            shareWidth(*this, isRow_);
        } else {
            box->addWidget(part.widget(), 0, flags(style_.alignment, isRow_, *part.widget()));
            shareWidth(*this, takesWidth(*part.widget()));
        }
    }

  private:
    StackStyle style_;
    bool isRow_;
};

QWidget* stack(bool isRow, const StackStyle& style, std::initializer_list<Part> parts) {
    auto* result = new Stack(isRow, style);
    for (const auto& part : parts) {
        result->append(part);
    }
    return result;
}

QWidget* containing(QWidget* content, QMargins margins, Qt::Alignment alignment = {}) {
    auto* container = new QWidget;
    auto* layout = new QVBoxLayout(container);
    layout->setContentsMargins(margins);
    layout->addWidget(content, 0, alignment);
    shareWidth(*container, takesWidth(*content));
    return container;
}

} // namespace

QWidget* row(const StackStyle& style, std::initializer_list<Part> parts) {
    return stack(/*isRow=*/true, style, parts);
}

QWidget* column(const StackStyle& style, std::initializer_list<Part> parts) {
    return stack(/*isRow=*/false, style, parts);
}

void append(QWidget* stack, Part part) {
    static_cast<Stack*>(stack)->append(part);
}

QWidget* padded(QWidget* content, QMargins margins) {
    return containing(content, margins);
}

QWidget* padded(QWidget* content, Padding padding) {
    return containing(content,
                      {padding.horizontal, padding.vertical, padding.horizontal, padding.vertical});
}

QWidget* framed(QWidget* content, QSize size) {
    auto* frame =
        containing(content, {}, takesWidth(*content) ? Qt::AlignVCenter : Qt::AlignCenter);
    frame->setFixedSize(size);
    return frame;
}

QWidget* fillingWidth(QWidget* content) {
    auto* container =
        containing(content, {}, takesWidth(*content) ? Qt::Alignment() : Qt::AlignLeft);
    shareWidth(*container, true);
    return container;
}

QWidget* divider(const QColor& color, double thickness) {
    return new Divider(color, thickness);
}

} // namespace orlune::ui
