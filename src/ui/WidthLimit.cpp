#include "ui/WidthLimit.h"

#include <QLayout>

#include <algorithm>
#include <memory>

namespace orlune::ui {

namespace {

/// A maximum width of the content would not be enough: Qt's layouts request the height for the
/// width of the whole place, which is too small for a text that wraps earlier.
class LimitingLayout final : public QLayout {
  public:
    explicit LimitingLayout(int width) : width_(width) { setContentsMargins(0, 0, 0, 0); }

    void addItem(QLayoutItem* item) override { item_.reset(item); }
    int count() const override { return item_ ? 1 : 0; }
    QLayoutItem* itemAt(int index) const override { return index == 0 ? item_.get() : nullptr; }
    QLayoutItem* takeAt(int index) override { return index == 0 ? item_.release() : nullptr; }

    QSize sizeHint() const override { return limited(item_->sizeHint()); }
    QSize minimumSize() const override { return limited(item_->minimumSize()); }
    bool hasHeightForWidth() const override { return item_->hasHeightForWidth(); }
    int heightForWidth(int width) const override {
        return item_->heightForWidth(std::min(width, width_));
    }
    Qt::Orientations expandingDirections() const override {
        return Qt::Horizontal | item_->expandingDirections();
    }

    void setGeometry(const QRect& place) override {
        QLayout::setGeometry(place);
        const int width = std::min(place.width(), width_);
        item_->setGeometry(
            {place.left() + (place.width() - width) / 2, place.top(), width, place.height()});
    }

  private:
    QSize limited(QSize size) const { return {std::min(size.width(), width_), size.height()}; }

    int width_;
    std::unique_ptr<QLayoutItem> item_;
};

} // namespace

QWidget* atMostWide(QWidget* content, int width) {
    auto* container = new QWidget;
    auto* layout = new LimitingLayout(width);
    container->setLayout(layout);
    layout->addWidget(content);
    container->setSizePolicy(QSizePolicy::Expanding, content->sizePolicy().verticalPolicy());
    return container;
}

} // namespace orlune::ui
