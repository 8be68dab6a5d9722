#include "ui/Theme.h"

#include "ui/Font.h"
#include "ui/Style.h"

#include <QPalette>
#include <QWidget>

namespace orlune::ui {

void applyDarkTheme(QWidget& window, const QColor& background, const QColor& tint) {
    QPalette palette;
    const QColor text = color(Style::primary);
    palette.setColor(QPalette::Window, background);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, background.lighter(160));
    palette.setColor(QPalette::AlternateBase, background.lighter(200));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::PlaceholderText, color(Style::tertiary));
    palette.setColor(QPalette::Button, background.lighter(220));
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
}

} // namespace orlune::ui
