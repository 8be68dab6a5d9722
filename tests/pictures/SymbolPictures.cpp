#include "tests/pictures/Pictures.h"
#include "ui/Stack.h"
#include "ui/Symbol.h"
#include "ui/Text.h"

#include <QDir>
#include <QGridLayout>

namespace orlune::pictures {

namespace {

QWidget* withSymbols(const QColor& color, ui::Weight weight) {
    constexpr int columnCount = 5;
    auto* sheet = new QWidget;
    auto* grid = new QGridLayout(sheet);
    grid->setHorizontalSpacing(18);
    grid->setVerticalSpacing(14);
    int index = 0;
    for (const QString& file : QDir(":/orlune/symbols").entryList({"*.svg"}, QDir::Files)) {
        const QString name = file.chopped(4);
        auto* sizes = ui::row({.spacing = 10}, {});
        for (const double size : {13, 23, 48}) {
            ui::append(sizes, new ui::Symbol(name, {size, weight}, color));
        }
        grid->addWidget(
            ui::column(
                {.spacing = 3, .alignment = ui::Alignment::leading},
                {sizes, new ui::Text(name, {.font = {9.5}, .color = ui::withOpacity(color, 0.6)})}),
            index / columnCount, index % columnCount);
        ++index;
    }
    return sheet;
}

QWidget* onLight(QWidget* content) {
    content->setAutoFillBackground(true);
    content->setPalette(QPalette(Qt::white));
    return content;
}

} // namespace

std::vector<Picture> symbolPictures() {
    const auto onDark = [](ui::Weight weight) {
        return [weight](Stage& /*stage*/) {
            return withSymbols(ui::color(ui::Style::primary), weight);
        };
    };
    return {
        {"symbols-regular", onDark(ui::Weight::regular)},
        {"symbols-medium", onDark(ui::Weight::medium)},
        {"symbols-semibold", onDark(ui::Weight::semibold)},
        {"symbols-bold", onDark(ui::Weight::bold)},
        {"symbols-on-light",
         [](Stage& /*stage*/) { return onLight(withSymbols(Qt::black, ui::Weight::regular)); }},
    };
}

} // namespace orlune::pictures
