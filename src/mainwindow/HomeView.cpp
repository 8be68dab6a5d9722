#include "mainwindow/HomeView.h"

#include "mainwindow/DictationSurface.h"
#include "mainwindow/KeyCap.h"
#include "mainwindow/MainGlassCard.h"
#include "mainwindow/StatusTile.h"
#include "ui/AccessibleElement.h"
#include "ui/Button.h"
#include "ui/Label.h"
#include "ui/ScrollView.h"
#include "ui/Stack.h"
#include "ui/Surface.h"
#include "ui/Symbol.h"
#include "ui/Text.h"
#include "ui/WidthLimit.h"
#include "visuals/OrluneMark.h"
#include "visuals/OrlunePalette.h"

#include <QPlainTextEdit>
#include <QScrollArea>
#include <QTextCursor>
#include <QVBoxLayout>

#include <utility>

namespace orlune {

namespace {

using Case = AppState::Phase::Case;
using ui::Alignment;
using ui::Weight;

constexpr auto engineDetail = "Deepgram streaming with your securely stored API key";

} // namespace

std::string phaseTitle(const AppState& state) {
    switch (state.phase().get().kind()) {
    case Case::idle:
        return state.idleInstruction();
    case Case::listening:
        return "Listening";
    case Case::processing:
        return "Structuring your prompt";
    case Case::reviewing:
        return "Check the intent";
    case Case::success:
        return "Prompt inserted";
    case Case::failure:
        return "Needs attention";
    }
    return {};
}

std::string phaseSubtitle(const AppState& state) {
    const auto& phase = state.phase().get();
    switch (phase.kind()) {
    case Case::idle:
        return "Your prompt will appear at the active cursor";
    case Case::listening:
        return state.activationMode().get() == ActivationMode::holdToSpeak
                   ? "Release when you're finished"
                   : "Press again when you're finished";
    case Case::processing:
        return "Finishing the transcript";
    case Case::reviewing:
        return "Press Fn to insert or Escape to cancel";
    case Case::success:
        return "Ready for the next one";
    case Case::failure:
        return *phase.message();
    }
    return {};
}

HomeView::HomeView(std::shared_ptr<AppState> state, const Platform& platform,
                   std::function<void()> openSettings)
    : state_(std::move(state)), keyEvents_(platform.keyEventMonitors),
      permissionStatus_(*this, platform), observation_(*this, [this] { refresh(); }) {
    auto* content =
        ui::column({.spacing = 28, .alignment = Alignment::leading},
                   {header(), readyCard(platform), systemSection(std::move(openSettings))});
    auto* page = new QWidget;
    auto* pageLayout = new QVBoxLayout(page);
    pageLayout->setContentsMargins(0, 0, 0, 0);
    pageLayout->addWidget(ui::atMostWide(ui::padded(content, 32), 760));
    pageLayout->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(ui::scrollView(page));
    observation_.observe(*state_);
    observation_.observe(permissionStatus_.microphoneGranted());
    observation_.observe(permissionStatus_.accessibilityGranted());
    refresh();
}

QWidget* HomeView::header() {
    auto* texts = ui::column(
        {.spacing = 3, .alignment = Alignment::leading},
        {new ui::Text(QStringLiteral("Orlune"),
                      {.font = {.size = 22, .weight = Weight::semibold}, .lineLimit = 1}),
         new ui::Text(QStringLiteral("Ready wherever you type"),
                      {.font = {.size = 13}, .color = ui::color(ui::Style::secondary)})});
    return ui::row({.spacing = 14}, {new OrluneMark(46), texts, ui::spacer(), statusPill()});
}

QWidget* HomeView::statusPill() {
    pillDot_ = new ui::Surface({});
    pillDot_->setFixedSize(7, 7);
    ui::hideFromAccessibility(*pillDot_);
    pillText_ =
        new ui::Text({}, {.font = {.size = 12, .weight = Weight::semibold}, .lineLimit = 1});
    auto* pill =
        new ui::Surface({.shape = ui::Shape::capsule(), .fill = ui::color(ui::Style::quaternary)},
                        ui::padded(ui::row({.spacing = 7}, {pillDot_, pillText_}),
                                   {.horizontal = 12, .vertical = 7}));
    pill->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    return pill;
}

QWidget* HomeView::readyCard(const Platform& platform) {
    title_ = new ui::Text({}, {.font = {.size = 17, .weight = Weight::semibold}});
    subtitle_ =
        new ui::Text({}, {.font = {.size = 12.5}, .color = ui::color(ui::Style::secondary)});
    phaseTexts_ = ui::column({.spacing = 4, .alignment = Alignment::leading}, {title_, subtitle_});
    keyCap_ = new KeyCap({});
    surface_ = new DictationSurface(state_, platform);
    connect(&surface_->editor(), &QPlainTextEdit::textChanged, this,
            [this] { clear_->setEnabled(!surface_->editor().document()->isEmpty()); });
    const ui::Font caption{.size = ui::textSize::caption};
    auto* promise = new ui::Label(QStringLiteral("checkmark.shield"),
                                  QStringLiteral("This is a safe test area"),
                                  {.font = caption, .color = ui::color(ui::Style::secondary)});
    clear_ = new ui::Button(QStringLiteral("Clear"),
                            {.style = ui::ButtonStyle::plain,
                             .font = {.size = ui::textSize::caption, .weight = Weight::medium}});
    clear_->setEnabled(false);
    connect(clear_, &QPushButton::clicked, this, [this] { clear(); });
    auto* card =
        ui::column({.spacing = 17}, {ui::row({}, {phaseTexts_, ui::spacer(12), keyCap_}), surface_,
                                     ui::row({}, {promise, ui::spacer(), clear_})});
    return new MainGlassCard(ui::padded(card, 22));
}

QWidget* HomeView::systemSection(std::function<void()> openSettings) {
    auto* title =
        new ui::Text(QStringLiteral("System"), {.font = {.size = 13, .weight = Weight::semibold}});
    auto* settings =
        new ui::Button(QStringLiteral("Settings"), {.style = ui::ButtonStyle::plain,
                                                    .color = ui::color(ui::Style::secondary),
                                                    .symbol = QStringLiteral("gearshape")});
    connect(settings, &QPushButton::clicked, this,
            [openSettings = std::move(openSettings)] { openSettings(); });
    microphone_ = new StatusTile(QStringLiteral("mic.fill"), QStringLiteral("Microphone"),
                                 /*ready=*/false);
    accessibility_ = new StatusTile(QStringLiteral("cursorarrow.motionlines"),
                                    QStringLiteral("Accessibility"), /*ready=*/false);
    return ui::column({.spacing = 12, .alignment = Alignment::leading},
                      {ui::row({}, {title, ui::spacer(), settings}),
                       ui::row({.spacing = 10}, {microphone_, accessibility_}), engineRow()});
}

QWidget* HomeView::engineRow() {
    auto* symbol = new ui::Symbol(QStringLiteral("sparkles"), {.size = ui::textSize::body},
                                  OrlunePalette::accent());
    auto* texts = ui::column({.spacing = 2, .alignment = Alignment::leading},
                             {new ui::Text(QStringLiteral("Orlune Engine"),
                                           {.font = {.size = 12.5, .weight = Weight::medium}}),
                              new ui::Text(QString::fromLatin1(engineDetail),
                                           {.font = {.size = ui::textSize::caption},
                                            .color = ui::color(ui::Style::secondary)})});
    engineReadiness_ = readinessText();
    auto* row = ui::row({.spacing = 11},
                        {ui::framed(symbol, {24, 24}), texts, ui::spacer(), engineReadiness_});
    auto* engine = new ui::Surface({.shape = ui::Shape::rounded(12),
                                    .fill = ui::withOpacity(ui::color(ui::Style::primary), 0.03)},
                                   ui::padded(row, {.horizontal = 14}));
    engine->setFixedHeight(54);
    engine_ = engine;
    return engine;
}

/// Cleared like an edit of the user, so that it can be undone.
void HomeView::clear() {
    QTextCursor everything(surface_->editor().document());
    everything.select(QTextCursor::Document);
    everything.removeSelectedText();
    surface_->editor().setFocus();
}

void HomeView::refresh() {
    const bool isEnabled = state_->isEnabled();
    pillDot_->setStyle(
        {.shape = ui::Shape::capsule(),
         .fill = isEnabled ? OrlunePalette::success() : ui::color(ui::Style::secondary)});
    pillText_->setText(isEnabled ? QStringLiteral("Active") : QStringLiteral("Paused"));
    const auto title = QString::fromStdString(phaseTitle(*state_));
    const auto subtitle = QString::fromStdString(phaseSubtitle(*state_));
    title_->setText(title);
    subtitle_->setText(subtitle);
    ui::combineForAccessibility(*phaseTexts_, title + QStringLiteral(". ") + subtitle);
    const auto& shortcut = state_->shortcut().get();
    keyCap_->setText(
        QString::fromStdString(shortcut.displayName()),
        QString::fromStdString(shortcut.functionKeyHint(keyEvents_.functionKeyStandIn())));
    microphone_->setReady(permissionStatus_.microphoneGranted());
    accessibility_->setReady(permissionStatus_.accessibilityGranted());
    showReadiness(*engineReadiness_, state_->hasDeepgramAPIKey());
    ui::combineForAccessibility(*engine_, QStringLiteral("Orlune Engine, ")
                                              + QString::fromLatin1(engineDetail)
                                              + QStringLiteral(", ") + engineReadiness_->text());
}

} // namespace orlune
