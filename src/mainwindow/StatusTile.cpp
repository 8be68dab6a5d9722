#include "mainwindow/StatusTile.h"

#include "ui/AccessibleElement.h"
#include "ui/Stack.h"
#include "ui/Surface.h"
#include "ui/Symbol.h"
#include "ui/Text.h"
#include "visuals/OrlunePalette.h"

#include <QVBoxLayout>

namespace orlune {

StatusTile::StatusTile(const QString& symbol, const QString& title, bool ready)
    : title_(title), symbol_(new ui::Symbol(symbol, {.size = ui::textSize::body})),
      readiness_(readinessText()) {
    auto* name =
        new ui::Text(title, {.font = {.size = 12.5, .weight = ui::Weight::medium}, .lineLimit = 1});
    auto* row =
        ui::row({.spacing = 11}, {ui::framed(symbol_, {24, 24}), name, ui::spacer(), readiness_});
    auto* tile = new ui::Surface({.shape = ui::Shape::rounded(12),
                                  .fill = ui::withOpacity(ui::color(ui::Style::primary), 0.035)},
                                 ui::padded(row, {.horizontal = 14}));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(tile);
    setFixedHeight(46);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setReady(ready);
}

void StatusTile::setReady(bool ready) {
    symbol_->setColor(ready ? OrlunePalette::accent() : ui::color(ui::Style::secondary));
    showReadiness(*readiness_, ready);
    ui::combineForAccessibility(*this, title_ + QStringLiteral(", ") + readiness_->text());
}

ui::Text* readinessText() {
    return new ui::Text({},
                        {.font = {.size = 10.5, .weight = ui::Weight::semibold}, .lineLimit = 1});
}

void showReadiness(ui::Text& text, bool ready) {
    text.setText(ready ? QStringLiteral("Ready") : QStringLiteral("Setup"));
    text.setColor(ready ? OrlunePalette::success() : ui::color(ui::Style::secondary));
}

} // namespace orlune
