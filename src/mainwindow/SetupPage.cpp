#include "mainwindow/SetupPage.h"

#include "ui/Stack.h"
#include "ui/Text.h"
#include "ui/WidthLimit.h"

#include <QVBoxLayout>

namespace orlune {

SetupPage::SetupPage(const QString& title, const QString& subtitle, QWidget* content)
    : subtitle_(new ui::Text(subtitle, {.font = {.size = 14},
                                        .color = ui::color(ui::Style::secondary),
                                        .lineSpacing = 2,
                                        .alignment = Qt::AlignHCenter})) {
    auto* heading = new ui::Text(title, {.font = {.size = 24, .weight = ui::Weight::semibold},
                                         .alignment = Qt::AlignHCenter});
    auto* texts = ui::column({.spacing = 9}, {heading, ui::atMostWide(subtitle_, 500)});
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(30, 30, 30, 30);
    layout->setSpacing(0);
    layout->addStretch();
    layout->addWidget(ui::column({.spacing = 22}, {texts, content}));
    layout->addStretch();
}

void SetupPage::setSubtitle(const QString& subtitle) {
    subtitle_->setText(subtitle);
}

} // namespace orlune
