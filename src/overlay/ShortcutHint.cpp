#include "overlay/ShortcutHint.h"

#include "ui/AccessibleElement.h"
#include "ui/Stack.h"
#include "ui/Surface.h"
#include "ui/Text.h"

#include <QVBoxLayout>

namespace orlune {

namespace {

QWidget* keyCap(const QString& key) {
    auto* name = new ui::Text(
        key, {.font = {.size = 10.5, .weight = ui::Weight::semibold, .design = ui::Design::rounded},
              .lineLimit = 1});
    return new ui::Surface({.shape = ui::Shape::rounded(7),
                            .fill = ui::withOpacity(Qt::white, 0.07),
                            .stroke = ui::withOpacity(Qt::white, 0.1),
                            .lineWidth = 0.5},
                           ui::padded(name, {.horizontal = 8, .vertical = 5}));
}

} // namespace

ShortcutHint::ShortcutHint(const QString& key, const QString& action, const QString& place) {
    auto* explanation = new ui::Text(action, {.font = {.size = 11, .weight = ui::Weight::medium},
                                              .color = ui::color(ui::Style::secondary),
                                              .lineLimit = 1});
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(ui::row({.spacing = 7}, {keyCap(key), explanation}));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred); // a key name must not be cut
    QStringList words{key, action};
    if (!place.isEmpty()) {
        words.insert(1, place);
    }
    ui::combineForAccessibility(*this, words.join(QStringLiteral(", ")));
}

} // namespace orlune
