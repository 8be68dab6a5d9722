#include "ui/Theme.h"

#include "ui/Font.h"
#include "ui/Style.h"

#include <QMenu>
#include <QPalette>
#include <QToolTip>
#include <QWidget>

namespace orlune::ui {

void applyDarkTheme(QWidget& window, const QColor& background, const QColor& tint) {
    QPalette palette(/*button=*/background.lighter(220), background);
    const QColor text = color(Style::primary);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, background.lighter(160));
    palette.setColor(QPalette::AlternateBase, background.lighter(200));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::PlaceholderText, color(Style::tertiary));
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::ToolTipBase, background.lighter(220));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Highlight, tint);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, tint.lighter(150));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, color(Style::tertiary));
    }
    window.setPalette(palette);
    window.setFont(Font{.size = textSize::body}.resolved());
    // Tool tips do not take the palette of their window.
    QToolTip::setPalette(palette);
    QToolTip::setFont(Font{.size = textSize::callout}.resolved());
}

void adoptTheme(QMenu& menu) {
    const auto& palette = menu.parentWidget()->palette();
    applyDarkTheme(menu, palette.color(QPalette::Button), palette.color(QPalette::Highlight));
}

} // namespace orlune::ui
