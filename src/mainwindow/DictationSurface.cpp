#include "mainwindow/DictationSurface.h"

#include "ui/CrossFade.h"
#include "ui/Font.h"
#include "ui/ScrollBar.h"
#include "ui/Stack.h"
#include "ui/Style.h"
#include "ui/Theme.h"
#include "visuals/DictationMotion.h"
#include "visuals/OrlunePalette.h"

#include <QContextMenuEvent>
#include <QGridLayout>
#include <QMenu>
#include <QPainter>
#include <QPlainTextEdit>

#include <utility>

namespace orlune {

namespace {

using Case = AppState::Phase::Case;

constexpr int lowest = 112;
constexpr int highest = 126;
constexpr int editorPadding = 10;
/// The distance from the surface's edge to the first letter, of the placeholder and of typed text.
constexpr QPoint textOrigin(15, 17);
constexpr int motionHeight = 46;
constexpr ui::Spring phaseSpring(/*response=*/0.25, /*dampingFraction=*/1.0);
/// The meter moves in from below and out again.
constexpr QPoint motionTravel(0, 10);

bool showsMotion(Case phase) {
    return phase == Case::listening || phase == Case::processing;
}

class Editor final : public QPlainTextEdit {
  public:
    Editor() {
        setFont(ui::Font{.size = 14}.resolved());
        setFrameShape(NoFrame);
        viewport()->setAutoFillBackground(false);
        const QPoint inset = textOrigin - QPoint(editorPadding, editorPadding);
        document()->setDocumentMargin(inset.x());
        document()->clearUndoRedoStacks(); // the user must not be able to undo the margin
        setViewportMargins(0, inset.y() - inset.x(), 0, 0);
        setVerticalScrollBar(new ui::ScrollBar);
        setTabChangesFocus(true);
        setAccessibleName(QStringLiteral("Test area"));
    }

    /// The surface controls the height.
    QSize sizeHint() const override { return {200, 0}; }
    QSize minimumSizeHint() const override { return {80, 0}; }

  protected:
    void contextMenuEvent(QContextMenuEvent* event) override {
        auto* menu = createStandardContextMenu(event->pos());
        menu->setAttribute(Qt::WA_DeleteOnClose);
        ui::adoptTheme(*menu);
        menu->popup(event->globalPos());
    }
};

ui::SurfaceStyle between(const ui::SurfaceStyle& from, const ui::SurfaceStyle& to,
                         double progress) {
    const auto mix = [progress](float first, float second) {
        return first + (second - first) * static_cast<float>(progress);
    };
    auto result = to;
    result.lineWidth = from.lineWidth + (to.lineWidth - from.lineWidth) * progress;
    result.stroke = QColor::fromRgbF(
        mix(from.stroke.redF(), to.stroke.redF()), mix(from.stroke.greenF(), to.stroke.greenF()),
        mix(from.stroke.blueF(), to.stroke.blueF()), mix(from.stroke.alphaF(), to.stroke.alphaF()));
    return result;
}

} // namespace

DictationSurface::DictationSurface(std::shared_ptr<AppState> state, const Platform& platform)
    : state_(std::move(state)), displayOptions_(platform.displayOptions), editor_(new Editor),
      motion_(new DictationMotion(state_->waveform(), /*processing=*/false, displayOptions_)),
      style_(style(state_->phase())), observation_(*this, [this] { refresh(); }) {
    auto* motionRow = ui::row({}, {motion_, ui::spacer()});
    motionRow->setFixedHeight(motionHeight);
    motion_->hide();
    motionLayer_ = new ui::CrossFade(ui::padded(motionRow, QMargins(13, 0, 13, 9)));
    motionLayer_->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* layers = new QGridLayout(this);
    layers->setContentsMargins(0, 0, 0, 0);
    layers->addWidget(ui::padded(editor_, editorPadding), 0, 0);
    layers->addWidget(motionLayer_, 0, 0, Qt::AlignBottom);
    setMinimumHeight(lowest);
    setMaximumHeight(highest);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    setCursor(Qt::IBeamCursor);
    observation_.observe(*state_);
}

QSize DictationSurface::sizeHint() const {
    return {QWidget::sizeHint().width(), highest};
}

ui::SurfaceStyle DictationSurface::style(const AppState::Phase& phase) {
    const QColor primary = ui::color(ui::Style::primary);
    const bool isListening = phase.is(Case::listening);
    return {.shape = ui::Shape::rounded(14),
            .fill = ui::withOpacity(primary, 0.035),
            .stroke = isListening ? ui::withOpacity(OrlunePalette::accent(), 0.58)
                                  : ui::withOpacity(primary, 0.07),
            .lineWidth = isListening ? 1 : 0.5};
}

void DictationSurface::refresh() {
    const auto& phase = state_->phase().get();
    if (shownPhase_ != phase.kind()) {
        showPhase(phase);
        shownPhase_ = phase.kind();
    }
}

void DictationSurface::showPhase(const AppState::Phase& phase) {
    editor_->setPlaceholderText(
        phase.is(Case::idle)
            ? QStringLiteral("Click here, activate Orlune, and describe what you want to build…")
            : QString());
    const auto showMotion = [this, kind = phase.kind()] {
        motion_->setVisible(showsMotion(kind));
        motion_->setProcessing(kind == Case::processing);
    };
    if (!shownPhase_) {
        style_ = style(phase);
        showMotion();
        return;
    }
    const bool appears = showsMotion(phase.kind()) && !showsMotion(*shownPhase_);
    const bool disappears = !showsMotion(phase.kind()) && showsMotion(*shownPhase_);
    const bool moves = !displayOptions_.shouldReduceMotion().get();
    if (appears || disappears || showsMotion(phase.kind())) {
        motionLayer_->change(phaseSpring, showMotion,
                             !moves       ? QPoint()
                             : appears    ? motionTravel
                             : disappears ? -motionTravel
                                          : QPoint());
    }
    animation_.run(phaseSpring, [this, from = style_, to = style(phase)](double progress) {
        style_ = between(from, to, progress);
        update();
    });
}

void DictationSurface::mousePressEvent(QMouseEvent* /*event*/) {
    editor_->setFocus(Qt::MouseFocusReason);
}

void DictationSurface::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    ui::paintSurface(painter, rect(), style_);
}

} // namespace orlune
