#include "overlay/OverlayView.h"

#include "overlay/GlassCapsule.h"
#include "overlay/IntentCheckView.h"
#include "overlay/PhaseIcon.h"
#include "ui/AccessibleElement.h"
#include "ui/Animation.h"
#include "ui/CrossFade.h"
#include "ui/Stack.h"
#include "ui/Text.h"

#include <QVBoxLayout>

#include <utility>

namespace orlune {

namespace {

/// The transition from one phase to the next.
constexpr ui::Spring phaseSpring(/*response=*/0.24, /*dampingFraction=*/1.0);

} // namespace

QSize OverlayView::size(const AppState::Phase& phase) {
    return phase.is(AppState::Phase::Case::reviewing) ? reviewSize : compactSize;
}

OverlayView::OverlayView(std::shared_ptr<AppState> state, const Platform& platform)
    : state_(std::move(state)), windowFacilities_(platform.windowFacilities),
      keyEvents_(platform.keyEventMonitors), observation_(*this, [this] { refresh(); }) {
    compactOverlay_ = new GlassCapsule(makeCompactOverlay(platform), /*margin=*/6);
    compactOverlay_->setFixedSize(compactSize);
    pages_ = ui::column({}, {compactOverlay_});
    content_ = new ui::CrossFade(pages_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(content_);
    observation_.observe(*state_);
    observation_.observe(windowFacilities_.isCompositing());
}

OverlayView::~OverlayView() = default;

QWidget* OverlayView::makeCompactOverlay(const Platform& platform) {
    phaseIcon_ = new PhaseIcon(state_->waveform(), platform.displayOptions);
    // The reason of a failure may need a second line.
    status_ =
        new ui::Text({}, {.font = {.size = 12, .weight = ui::Weight::semibold}, .lineLimit = 2});
    detail_ = new ui::Text({}, {.font = {.size = 10.5, .weight = ui::Weight::medium},
                                .color = ui::color(ui::Style::secondary),
                                .lineLimit = 1});
    auto* texts =
        ui::column({.spacing = 3, .alignment = ui::Alignment::leading}, {status_, detail_});
    auto* row = ui::row({.spacing = 11}, {phaseIcon_, texts, ui::spacer(2)});
    compactContent_ = new ui::CrossFade(ui::padded(row, {.horizontal = 13}));
    compactContent_->setFixedSize(238, 58);
    return ui::padded(compactContent_, 6);
}

std::string OverlayView::detail(const AppState& state) {
    const auto shortcut = state.shortcut().get().displayName();
    switch (state.phase().get().kind()) {
    case AppState::Phase::Case::listening:
        return state.activationMode().get() == ActivationMode::holdToSpeak
                   ? "Release " + shortcut + " · Esc cancels"
                   : "Press " + shortcut + " to finish · Esc cancels";
    case AppState::Phase::Case::processing:
        return "Finishing your prompt";
    default:
        return summary(state);
    }
}

std::string OverlayView::summary(const AppState& state) {
    if (!state.interimTranscript().get().empty()) {
        return state.interimTranscript();
    }
    const auto* message = state.phase().get().message();
    return message ? *message : "Ready";
}

QPainterPath OverlayView::outline() const {
    return intentCheck_ ? intentCheck_->outline() : compactOverlay_->outline();
}

void OverlayView::refresh() {
    compactOverlay_->setTranslucent(windowFacilities_.isCompositing());
    phaseIcon_->setBackground(compactOverlay_->glass());
    const auto& phase = state_->phase().get();
    const auto* check = phase.intentCheck();
    const auto shortcut = state_->shortcut().get().displayName();
    const bool isNewPhase = shownPhase_ != phase;
    const auto showPage = [&] { check ? showCard(*check) : showCapsule(); };
    if (!shownPhase_ || (!check && intentCheck_)) {
        content_->settle(); // the panel is already smaller than a fading card
        showPage();
    } else if (check && (isNewPhase || shownShortcut_ != shortcut)) {
        content_->change(phaseSpring, showPage);
    } else if (!check && isNewPhase) {
        compactContent_->change(phaseSpring, [this] { updateCapsule(); });
    } else if (!check) {
        updateCapsule();
    }
    shownPhase_ = phase;
    shownShortcut_ = shortcut;
}

void OverlayView::showCard(const IntentCheck& check) {
    delete intentCheck_;
    const auto& shortcut = state_->shortcut().get();
    intentCheck_ = new IntentCheckView(
        check, QString::fromStdString(shortcut.displayName()),
        QString::fromStdString(shortcut.functionKeyHint(keyEvents_.functionKeyStandIn())));
    intentCheck_->setFixedSize(reviewSize);
    intentCheck_->fit(reviewSize.height());
    ui::append(pages_, intentCheck_);
    compactOverlay_->hide();
    intentCheck_->show();
}

void OverlayView::showCapsule() {
    delete std::exchange(intentCheck_, nullptr);
    updateCapsule();
    compactOverlay_->show();
}

void OverlayView::updateCapsule() {
    const auto phase = state_->phase().get().kind();
    phaseIcon_->setPhase(phase);
    const auto status = QString::fromStdString(state_->statusMessage());
    status_->setText(status);
    detail_->setText(QString::fromStdString(detail(*state_)));
    // A hint that names keys must be readable to its end; for other texts the beginning is enough.
    constexpr double smallestHint = 0.7;
    detail_->setMinimumScale(phase == AppState::Phase::Case::listening ? smallestHint : 1);
    ui::combineForAccessibility(*compactOverlay_, status);
}

} // namespace orlune
