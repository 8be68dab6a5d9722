#include "mainwindow/OnboardingView.h"

#include "mainwindow/DeepgramKeyEntry.h"
#include "mainwindow/DictationSurface.h"
#include "mainwindow/KeyCap.h"
#include "mainwindow/SetupPage.h"
#include "mainwindow/SetupPermissionRow.h"
#include "mainwindow/StepIndicator.h"
#include "mainwindow/WelcomePage.h"
#include "ui/Button.h"
#include "ui/CrossFade.h"
#include "ui/Label.h"
#include "ui/ScrollView.h"
#include "ui/Stack.h"
#include "ui/Text.h"
#include "ui/WidthLimit.h"
#include "visuals/OrluneMark.h"
#include "visuals/OrlunePalette.h"

#include <QHideEvent>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QVBoxLayout>

#include <utility>

namespace orlune {

namespace {

constexpr ui::Spring stepSpring(/*response=*/0.32, /*dampingFraction=*/0.85);
/// The page has stopped moving by then.
constexpr auto focusDelay = std::chrono::milliseconds(350);

bool holdsToSpeak(const AppState& state) {
    return state.activationMode().get() == ActivationMode::holdToSpeak;
}

QString testSubtitle(const AppState& state) {
    return holdsToSpeak(state)
               ? QStringLiteral("Click below, hold Fn, and speak. Release Fn when you're done.")
               : QStringLiteral(
                     "Click below, press Fn, and speak. Press Fn again when you're done.");
}

/// A bar of the given height with its content centred.
QWidget* bar(QWidget* content, int height) {
    auto* result = ui::padded(content, {.horizontal = 24});
    result->setFixedHeight(height);
    return result;
}

} // namespace

OnboardingView::OnboardingView(std::shared_ptr<AppState> state, const Platform& platform,
                               std::function<void()> finish)
    : state_(std::move(state)), mainActor_(platform.mainActor), clock_(platform.clock),
      displayOptions_(platform.displayOptions), keyEvents_(platform.keyEventMonitors),
      finish_(std::move(finish)), permissionStatus_(*this, platform),
      observation_(*this, [this] { refresh(); }) {
    auto* pageHolder = new QWidget;
    auto* pageLayout = new QVBoxLayout(pageHolder);
    pageLayout->setContentsMargins(0, 0, 0, 0);
    for (auto* page : {static_cast<QWidget*>(new WelcomePage), keyPage(platform.urlOpener),
                       permissionsPage(), testPage(platform)}) {
        auto* view = ui::scrollView(page);
        pageLayout->addWidget(view); // first: without a parent it would be a window
        view->setVisible(steps_.empty());
        steps_.push_back(view);
    }
    pages_ = new ui::CrossFade(pageHolder);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(header());
    layout->addWidget(pages_, 1);
    layout->addWidget(ui::divider(ui::color(ui::Style::quaternary)));
    layout->addWidget(navigationBar());
    observation_.observe(*state_);
    observation_.observe(permissionStatus_.microphoneGranted());
    observation_.observe(permissionStatus_.accessibilityGranted());
    refresh();
}

OnboardingView::~OnboardingView() {
    focusing_.cancel();
}

QWidget* OnboardingView::header() {
    indicator_ = new StepIndicator;
    auto* name = new ui::Text(QStringLiteral("Orlune"),
                              {.font = {.size = 17, .weight = ui::Weight::semibold}});
    return bar(ui::row({.spacing = 12}, {new OrluneMark(30), name, ui::spacer(), indicator_}), 58);
}

QWidget* OnboardingView::navigationBar() {
    back_ = new ui::Button(QStringLiteral("Back"), {.style = ui::ButtonStyle::plain,
                                                    .color = ui::color(ui::Style::secondary)});
    next_ =
        new ui::Button({}, {.style = ui::ButtonStyle::prominent, .size = ui::ControlSize::large});
    next_->setDefault(true);
    connect(back_, &QPushButton::clicked, this, [this] { setStep(step_ - 1); });
    connect(next_, &QPushButton::clicked, this, [this] { advance(); });
    return bar(ui::row({}, {back_, ui::spacer(), next_}), 64);
}

QWidget* OnboardingView::keyPage(UrlOpener& urlOpener) {
    keyEntry_ = new DeepgramKeyEntry(state_, urlOpener, /*saved=*/[this] {
        refresh();
        next_->setFocus();
    });
    return new SetupPage(
        QStringLiteral("Connect Deepgram."),
        QStringLiteral("Orlune streams active dictation directly to Deepgram. Your key is stored "
                       "securely in the Mac Keychain."),
        ui::atMostWide(keyEntry_, 510));
}

QWidget* OnboardingView::permissionsPage() {
    microphone_ = new SetupPermissionRow(
        QStringLiteral("mic.fill"), QStringLiteral("Microphone"),
        QStringLiteral("Capture your voice during active dictation"), /*granted=*/false,
        [this] { permissionStatus_.requestMicrophone(); });
    accessibility_ = new SetupPermissionRow(
        QStringLiteral("cursorarrow.motionlines"), QStringLiteral("Accessibility"),
        QStringLiteral("Use Fn globally and paste at the cursor"), /*granted=*/false,
        [this] { permissionStatus_.requestAccessibility(); });
    auto* advice = new ui::Text(
        QStringLiteral("After enabling Accessibility, return to Orlune. A newly rebuilt Xcode app "
                       "may need to be quit and reopened once."),
        {.font = {.size = ui::textSize::caption},
         .color = ui::color(ui::Style::secondary),
         .alignment = Qt::AlignHCenter});
    auto* content = ui::column(
        {.spacing = 12}, {microphone_, accessibility_, ui::padded(advice, QMargins(0, 3, 0, 0))});
    return new SetupPage(
        QStringLiteral("Two permissions. Nothing more."),
        QStringLiteral("Orlune listens only after you activate it and uses Accessibility to insert "
                       "text into the app you're using."),
        ui::atMostWide(content, 510));
}

QWidget* OnboardingView::testPage(const Platform& platform) {
    testSurface_ = new DictationSurface(state_, platform);
    connect(&testSurface_->editor(), &QPlainTextEdit::textChanged, this,
            [this] { observation_.invalidate(); });
    keyCap_ = new KeyCap({});
    hint_ = new ui::Text({}, {.font = {.size = 12, .weight = ui::Weight::medium},
                              .color = ui::color(ui::Style::secondary)});
    shortcutHint_ = ui::row({.spacing = 8}, {keyCap_, hint_});
    isReady_ = new ui::Label(
        QStringLiteral("checkmark.circle.fill"), QStringLiteral("Orlune is ready"),
        {.font = {.size = 12, .weight = ui::Weight::semibold}, .color = OrlunePalette::success()});
    testPage_ = new SetupPage(
        QStringLiteral("Try your first prompt."), testSubtitle(*state_),
        ui::column({.spacing = 14}, {ui::atMostWide(testSurface_, 540), shortcutHint_, isReady_}));
    return testPage_;
}

void OnboardingView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!isAncestorOf(window()->focusWidget())) {
        focusStep();
    }
}

void OnboardingView::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    // A closed window keeps no key that was entered and not saved; a minimised one does. Deferred,
    // because a window is also hidden while it is being destroyed.
    if (!event->spontaneous()) {
        QMetaObject::invokeMethod(
            keyEntry_, [this] { keyEntry_->discardEntry(); }, Qt::QueuedConnection);
    }
}

void OnboardingView::advance() {
    if (step_ == test) {
        finish_();
    } else {
        setStep(step_ + 1);
    }
}

void OnboardingView::setStep(int step) {
    const int previous = std::exchange(step_, step);
    // Before the focused button is hidden, which would pass the focus to the next control.
    focusStep();
    refresh();
    indicator_->setStep(step);
    const bool moves = !displayOptions_.shouldReduceMotion().get();
    pages_->change(
        stepSpring,
        [this, previous, step] {
            steps_[static_cast<std::size_t>(previous)]->hide();
            steps_[static_cast<std::size_t>(step)]->show();
        },
        moves ? QPoint(width(), 0) : QPoint());
    permissionStatus_.setPolling(step == permissions);
    std::exchange(focusing_, {}).cancel();
    if (step == test) {
        focusTestEditorLater();
    }
}

/// Gives the focus to what comes next in each step: the key field while a key is missing, else the
/// button that continues.
void OnboardingView::focusStep() {
    const bool needsKey = step_ == key && !state_->hasDeepgramAPIKey().get();
    const bool goesBack = step_ != welcome && back_->hasFocus();
    if (needsKey) {
        keyEntry_->setFocus();
    } else if (!goesBack) {
        next_->setFocus();
    }
}

void OnboardingView::focusTestEditorLater() {
    auto& editor = testSurface_->editor();
    focusing_ = Task::start(mainActor_.executor(),
                            [&editor, &clock = clock_](Task self) -> Awaitable<void> {
                                auto sleeping = clock.sleep(focusDelay);
                                co_await std::move(sleeping);
                                // Cancelled before the editor is destroyed.
                                if (!self.isCancelled()) {
                                    editor.setFocus();
                                }
                            });
}

void OnboardingView::showPermissions() {
    const bool hasMicrophone = permissionStatus_.microphoneGranted();
    const bool hasAccessibility = permissionStatus_.accessibilityGranted();
    // A button that is hidden would pass the focus to the next control. The window may be inactive
    // now, because permissions are granted elsewhere.
    const auto* focused = window()->focusWidget();
    if (focused
        && ((hasMicrophone && microphone_->isAncestorOf(focused))
            || (hasAccessibility && accessibility_->isAncestorOf(focused)))) {
        if (!hasMicrophone) {
            microphone_->focusButton();
        } else if (!hasAccessibility) {
            accessibility_->focusButton();
        } else {
            next_->setFocus();
        }
    }
    microphone_->setGranted(hasMicrophone);
    accessibility_->setGranted(hasAccessibility);
}

void OnboardingView::refresh() {
    const bool hasKey = state_->hasDeepgramAPIKey();
    back_->setVisible(step_ != welcome);
    next_->setText(step_ == test ? QStringLiteral("Start Using Orlune")
                                 : QStringLiteral("Continue"));
    next_->setEnabled(step_ != key || hasKey);
    showPermissions();
    testPage_->setSubtitle(testSubtitle(*state_));
    const auto& shortcut = state_->shortcut().get();
    keyCap_->setText(
        QString::fromStdString(shortcut.displayName()),
        QString::fromStdString(shortcut.functionKeyHint(keyEvents_.functionKeyStandIn())));
    hint_->setText(holdsToSpeak(*state_) ? QStringLiteral("Hold to speak")
                                         : QStringLiteral("Press to start"));
    const bool isTested = !testSurface_->editor().document()->isEmpty();
    shortcutHint_->setVisible(!isTested);
    isReady_->setVisible(isTested);
}

} // namespace orlune
