#include "settings/SettingsPanel.h"

#include "ui/Style.h"
#include "ui/Surface.h"
#include "ui/Text.h"
#include "visuals/OrlunePalette.h"

#include <QPainter>
#include <QVBoxLayout>

namespace orlune {

namespace {

constexpr int padding = 18;
constexpr int spacing = 14;
constexpr double cornerRadius = 22;

/// Takes less room in its layout than its widget has.
class OverflowingItem final : public QWidgetItem {
  public:
    OverflowingItem(QWidget* widget, int overflow)
        : QWidgetItem(widget), margins_(overflow, overflow, overflow, overflow) {}

    QSize sizeHint() const override { return QWidgetItem::sizeHint().shrunkBy(margins_); }
    QSize minimumSize() const override { return QWidgetItem::minimumSize().shrunkBy(margins_); }
    void setGeometry(const QRect& place) override {
        QWidgetItem::setGeometry(place.marginsAdded(margins_));
    }

  private:
    QMargins margins_;
};

} // namespace

SettingsPanel::SettingsPanel(const QString& title, std::initializer_list<Content> content) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(spacing);
    layout->addWidget(new ui::Text(title, {.font = {.size = 11,
                                                    .weight = ui::Weight::semibold,
                                                    .design = ui::Design::monospaced,
                                                    .tracking = 0.7},
                                           .color = ui::color(ui::Style::secondary),
                                           .lineLimit = 1}));
    for (const auto& part : content) {
        part.widget->setParent(this);
        layout->addItem(new OverflowingItem(part.widget, part.overflow));
    }
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
}

void SettingsPanel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    ui::paintSurface(painter, rect(),
                     {.shape = ui::Shape::rounded(cornerRadius),
                      .fill = ui::withOpacity(OrlunePalette::surface(), 0.92),
                      .stroke = OrlunePalette::border(),
                      .lineWidth = 0.7});
}

} // namespace orlune
