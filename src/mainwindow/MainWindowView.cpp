#include "mainwindow/MainWindowView.h"

#include "mainwindow/HomeView.h"
#include "mainwindow/OnboardingView.h"
#include "ui/CrossFade.h"
#include "ui/Theme.h"
#include "visuals/AuroraBackdrop.h"
#include "visuals/OrlunePalette.h"

#include <QGridLayout>
#include <QVBoxLayout>

#include <utility>

namespace orlune {

namespace {

constexpr auto completionKey = "hasCompletedOnboarding";
constexpr QSize minimumContentSize(640, 480);
constexpr ui::Spring completionSpring(/*response=*/0.35, /*dampingFraction=*/0.85);

} // namespace

MainWindowView::MainWindowView(std::shared_ptr<AppState> state, const Platform& platform,
                               std::function<void()> openSettings)
    : state_(std::move(state)), platform_(platform), openSettings_(std::move(openSettings)),
      backdrop_(new AuroraBackdrop(/*active=*/false)), pages_(new QWidget),
      content_(new ui::CrossFade(pages_)), observation_(*this, [this] { refresh(); }) {
    ui::applyDarkTheme(*this, OrlunePalette::background(), OrlunePalette::accent());
    page_ = platform_.userDefaults.boolean(completionKey).value_or(false)
                ? makeHome()
                : new OnboardingView(state_, platform_, [this] { completeOnboarding(); });
    auto* pageLayout = new QVBoxLayout(pages_);
    pageLayout->setContentsMargins(0, 0, 0, 0);
    pageLayout->addWidget(page_);
    auto* layers = new QGridLayout(this);
    layers->setContentsMargins(0, 0, 0, 0);
    layers->addWidget(backdrop_, 0, 0);
    layers->addWidget(content_, 0, 0);
    setMinimumSize(minimumContentSize);
    observation_.observe(state_->phase());
}

QWidget* MainWindowView::makeHome() {
    return new HomeView(state_, platform_, openSettings_);
}

void MainWindowView::completeOnboarding() {
    platform_.userDefaults.set(completionKey, true);
    content_->change(completionSpring, [this] {
        // Only hidden now, because it is still reporting that it has finished.
        page_->hide();
        page_->deleteLater();
        page_ = makeHome();
        pages_->layout()->addWidget(page_);
        page_->show();
    });
}

void MainWindowView::refresh() {
    const auto phase = state_->phase().get().kind();
    backdrop_->setActive(phase == AppState::Phase::Case::listening
                         || phase == AppState::Phase::Case::processing);
}

} // namespace orlune
