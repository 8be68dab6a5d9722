#include "mainwindow/SetupPermissionRow.h"

#include "ui/Button.h"
#include "ui/Label.h"
#include "ui/Stack.h"
#include "ui/Surface.h"
#include "ui/Symbol.h"
#include "ui/Text.h"
#include "visuals/OrlunePalette.h"

#include <QVBoxLayout>

#include <utility>

namespace orlune {

SetupPermissionRow::SetupPermissionRow(const QString& symbol, const QString& title,
                                       const QString& detail, bool granted,
                                       std::function<void()> action)
    : symbol_(new ui::Symbol(symbol, {.size = 16, .weight = ui::Weight::semibold})),
      tile_(new ui::Surface({}, ui::framed(symbol_, {38, 38}))),
      allowed_(new ui::Label(QStringLiteral("checkmark.circle.fill"), QStringLiteral("Allowed"),
                             {.font = {.size = 11, .weight = ui::Weight::semibold},
                              .color = OrlunePalette::success(),
                              .lineLimit = 1})),
      allow_(new ui::Button(QStringLiteral("Allow"), {})) {
    allow_->setAccessibleName(QStringLiteral("Allow ") + title);
    connect(allow_, &QPushButton::clicked, this, [action = std::move(action)] { action(); });
    auto* texts =
        ui::column({.spacing = 3, .alignment = ui::Alignment::leading},
                   {new ui::Text(title, {.font = {.size = 14, .weight = ui::Weight::semibold}}),
                    new ui::Text(detail, {.font = {.size = ui::textSize::caption},
                                          .color = ui::color(ui::Style::secondary)})});
    auto* row = ui::row({.spacing = 14}, {tile_, texts, ui::spacer(), allowed_, allow_});
    const QColor primary = ui::color(ui::Style::primary);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new ui::Surface({.shape = ui::Shape::rounded(15),
                                       .fill = ui::withOpacity(primary, 0.035),
                                       .stroke = ui::withOpacity(primary, 0.06),
                                       .lineWidth = 0.5},
                                      ui::padded(row, 15)));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    setGranted(granted);
}

void SetupPermissionRow::focusButton() {
    allow_->setFocus();
}

void SetupPermissionRow::setGranted(bool granted) {
    const QColor color = granted ? OrlunePalette::success() : OrlunePalette::accent();
    symbol_->setColor(color);
    tile_->setStyle({.shape = ui::Shape::rounded(11), .fill = ui::withOpacity(color, 0.09)});
    allowed_->setVisible(granted);
    allow_->setVisible(!granted);
}

} // namespace orlune
