#include "overlay/IntentCheckView.h"

#include "overlay/ShortcutHint.h"
#include "ui/AccessibleElement.h"
#include "ui/Stack.h"
#include "ui/Surface.h"
#include "ui/Symbol.h"
#include "ui/Text.h"
#include "visuals/OrlunePalette.h"

#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace orlune {

namespace {

constexpr int cardWidth = 472;
constexpr int cardMargin = 10;
constexpr std::size_t shownRequirements = 3;
constexpr int goalLines = 4;
constexpr int requirementLines = 2;

const ui::SurfaceStyle& cardStyle() {
    static const ui::SurfaceStyle style{.shape = ui::Shape::rounded(18),
                                        .fill = ui::withOpacity(OrlunePalette::background(), 0.98),
                                        .stroke = ui::withOpacity(Qt::white, 0.12),
                                        .lineWidth = 0.7};
    return style;
}

ui::Text* sectionLabel(const QString& label) {
    return new ui::Text(label,
                        {.font = {.size = 9.5, .weight = ui::Weight::semibold, .tracking = 0.8},
                         .color = ui::color(ui::Style::secondary),
                         .lineLimit = 1});
}

/// The system's divider with white at 0.08 over it.
QWidget* cardDivider() {
    return ui::divider(ui::withOpacity(Qt::white, 0.17));
}

/// A caption above a block of text.
class IntentSection final : public QWidget {
  public:
    IntentSection(const QString& label, const QString& text)
        : text_(new ui::Text(text, {.font = {.size = 13.5, .weight = ui::Weight::medium},
                                    .lineLimit = goalLines,
                                    .lineSpacing = 2})) {
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(ui::column({.spacing = 7, .alignment = ui::Alignment::leading},
                                     {sectionLabel(label), text_}));
    }

    ui::Text* text() const { return text_; }

  private:
    ui::Text* text_;
};

/// A dot aligned with the first line of `text`, like a letter.
QWidget* bullet(const ui::Text& text) {
    constexpr int diameter = 4;
    auto* dot =
        new ui::Surface({.shape = ui::Shape::capsule(), .fill = ui::color(ui::Style::secondary)});
    dot->setFixedSize(diameter, diameter);
    ui::hideFromAccessibility(*dot);
    const int above = static_cast<int>(std::lround(text.firstBaseline())) - diameter;
    return ui::padded(dot, QMargins(0, above, 0, 0));
}

} // namespace

IntentCheckView::IntentCheckView(const IntentCheck& check, const QString& shortcut,
                                 const QString& shortcutHint) {
    card_ = ui::column({.alignment = ui::Alignment::leading},
                       {ui::padded(header(), 18), cardDivider(), content(check), cardDivider(),
                        footer(shortcut, shortcutHint)});
    card_->setFixedWidth(cardWidth);
    card_->setAccessibleName(QStringLiteral("Intent check"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(cardMargin, cardMargin, cardMargin, cardMargin);
    layout->addStretch();
    layout->addWidget(card_);
    layout->addStretch();
}

QWidget* IntentCheckView::header() {
    auto* caption =
        new ui::Text(QStringLiteral("INTENT CHECK"),
                     {.font = {.size = 10, .weight = ui::Weight::semibold, .tracking = 1.1},
                      .color = OrlunePalette::accentBright(),
                      .lineLimit = 1});
    auto* question =
        new ui::Text(QStringLiteral("Is this what you want the agent to do?"),
                     {.font = {.size = 15, .weight = ui::Weight::semibold}, .lineLimit = 1});
    auto* symbol =
        new ui::Symbol(QStringLiteral("checkmark.message"),
                       {.size = 18, .weight = ui::Weight::medium}, ui::color(ui::Style::secondary));
    return ui::row({.spacing = 12}, {ui::column({.spacing = 3, .alignment = ui::Alignment::leading},
                                                {caption, question}),
                                     ui::spacer(), symbol});
}

QWidget* IntentCheckView::content(const IntentCheck& check) {
    auto* goal = new IntentSection(QStringLiteral("GOAL"), QString::fromStdString(check.goal));
    goal_ = goal->text();
    sections_ =
        ui::column({.spacing = 16, .alignment = ui::Alignment::leading}, {ui::fillingWidth(goal)});
    if (!check.requirements.empty()) {
        ui::append(sections_, requirements(check.requirements));
    }
    if (check.potentialGap) {
        ui::append(sections_, gapBox(*check.potentialGap));
    }
    content_ = ui::padded(sections_, 18);
    return content_;
}

QWidget* IntentCheckView::requirements(const std::vector<std::string>& requirements) {
    list_ = ui::column({.spacing = 7, .alignment = ui::Alignment::leading}, {});
    const std::size_t shown = std::min(requirements.size(), shownRequirements);
    for (std::size_t index = 0; index < shown; ++index) {
        ui::append(list_, requirement(requirements[index]));
    }
    if (requirements.size() > shown) {
        ui::append(list_, new ui::Text(QStringLiteral("+ %1 more").arg(requirements.size() - shown),
                                       {.font = {.size = 10.5, .weight = ui::Weight::medium},
                                        .color = ui::color(ui::Style::tertiary),
                                        .lineLimit = 1}));
    }
    return ui::column({.spacing = 8, .alignment = ui::Alignment::leading},
                      {sectionLabel(QStringLiteral("REQUIREMENTS")), list_});
}

QWidget* IntentCheckView::requirement(const std::string& text) {
    auto* shown = new ui::Text(QString::fromStdString(text),
                               {.font = {.size = 12.5},
                                .color = ui::withOpacity(ui::color(ui::Style::primary), 0.9),
                                .lineLimit = requirementLines});
    requirements_.push_back(shown);
    return ui::row({.spacing = 8, .alignment = ui::Alignment::leading}, {bullet(*shown), shown});
}

QWidget* IntentCheckView::gapBox(const std::string& gap) {
    gap_ = new ui::Text(QString::fromStdString(gap),
                        {.font = {.size = 12}, .color = ui::color(ui::Style::secondary)});
    auto* symbol =
        new ui::Symbol(QStringLiteral("questionmark.circle"), {.size = ui::textSize::body},
                       ui::withOpacity(ui::orange(), 0.85));
    auto* texts = ui::column({.spacing = 3, .alignment = ui::Alignment::leading},
                             {sectionLabel(QStringLiteral("POSSIBLE GAP")), gap_});
    auto* row = ui::row({.spacing = 9, .alignment = ui::Alignment::leading}, {symbol, texts});
    return new ui::Surface(
        {.shape = ui::Shape::rounded(10), .fill = ui::withOpacity(ui::orange(), 0.07)},
        ui::fillingWidth(ui::padded(row, 11)));
}

QWidget* IntentCheckView::footer(const QString& shortcut, const QString& shortcutHint) {
    // Wraps when the shortcut has many keys.
    auto* promise = new ui::Text(
        QStringLiteral("Nothing is inserted until you confirm"),
        {.font = {.size = 10.5}, .color = ui::color(ui::Style::tertiary), .lineLimit = 2});
    auto* hints = ui::row({.spacing = 18},
                          {new ShortcutHint(shortcut, QStringLiteral("Insert"), shortcutHint),
                           new ShortcutHint(QStringLiteral("esc"), QStringLiteral("Cancel")),
                           ui::spacer(), promise});
    auto* footer = ui::padded(hints, {.horizontal = 18});
    footer->setFixedHeight(50);
    return footer;
}

void IntentCheckView::fit(int height) {
    const int room = height - 2 * cardMargin;
    const auto isTooTall = [this, room] {
        // The holders of a part keep its old height until an event that has not arrived yet.
        for (auto* holder : card_->findChildren<QWidget*>()) {
            holder->updateGeometry();
        }
        return card_->heightForWidth(cardWidth) > room;
    };
    if (isTooTall()) {
        constexpr int tight = 12;
        content_->layout()->setContentsMargins(18, tight, 18, tight);
        sections_->layout()->setSpacing(tight);
        if (list_) {
            list_->layout()->setSpacing(2);
        }
    }
    const auto shorten = [&isTooTall](ui::Text* text, int lines) {
        if (text && isTooTall()) {
            text->setLineLimit(lines);
        }
    };
    for (auto text = requirements_.rbegin(); text != requirements_.rend(); ++text) {
        shorten(*text, requirementLines - 1);
    }
    for (int lines = goalLines - 1; lines > 1; --lines) {
        shorten(goal_, lines);
    }
    shorten(gap_, 1);
    shorten(goal_, 1);
}

QPainterPath IntentCheckView::outline() const {
    return cardStyle().shape.path(card_->geometry());
}

void IntentCheckView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    ui::paintSurface(painter, card_->geometry(), cardStyle());
}

} // namespace orlune
