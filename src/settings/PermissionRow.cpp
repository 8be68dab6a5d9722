#include "settings/PermissionRow.h"

#include "ui/AccessibleElement.h"
#include "ui/Button.h"
#include "ui/Stack.h"
#include "ui/Symbol.h"
#include "ui/Text.h"
#include "visuals/OrlunePalette.h"

#include <QVBoxLayout>

#include <utility>

namespace orlune {

PermissionRow::PermissionRow(const QString& title, const QString& detail,
                             std::function<void()> action)
    : title_(title), detail_(detail),
      symbol_(new ui::Symbol(QStringLiteral("circle.dashed"), {.size = ui::textSize::title3})),
      texts_(
          ui::column({.spacing = 2, .alignment = ui::Alignment::leading},
                     {new ui::Text(title, {.font = {.size = ui::textSize::body}, .lineLimit = 1}),
                      new ui::Text(detail, {.font = {.size = ui::textSize::caption},
                                            .color = ui::color(ui::Style::secondary)})})),
      allow_(new ui::Button(QStringLiteral("Allow"), {})) {
    allow_->setAccessibleName(QStringLiteral("Allow %1").arg(title));
    connect(allow_, &QPushButton::clicked, this, std::move(action));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 3, 0, 3);
    layout->addWidget(ui::row({.spacing = 12}, {symbol_, texts_, ui::spacer(), allow_}));
    setGranted(false);
}

void PermissionRow::setGranted(bool isGranted) {
    symbol_->setName(isGranted ? QStringLiteral("checkmark.circle.fill")
                               : QStringLiteral("circle.dashed"));
    symbol_->setColor(isGranted ? OrlunePalette::success() : ui::color(ui::Style::secondary));
    if (isGranted && allow_->hasFocus()) {
        texts_->setFocus(); // else another control gets the focus, and the page scrolls to it
    }
    allow_->setVisible(!isGranted);
    ui::combineForAccessibility(
        *texts_,
        QStringLiteral("%1, %2. %3")
            .arg(title_, isGranted ? QStringLiteral("allowed") : QStringLiteral("not allowed"),
                 detail_));
}

} // namespace orlune
