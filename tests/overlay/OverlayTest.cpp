// The floating panel and the texts of its capsule, during a simulated dictation.

#include "overlay/GlassCapsule.h"
#include "overlay/OverlayView.h"
#include "overlay/OverlayWindowController.h"
#include "tests/support/DictationHarness.h"

#include <QApplication>
#include <QLabel>
#include <QTest>

namespace orlune {
namespace {

using Modifiers = DictationShortcut::Modifiers;

TEST(OverlayTextTest, listeningShowsTheKeysAndNeverTheTranscript) {
    DictationHarness dictation;
    dictation.begin();
    dictation.result("what was said", /*isFinal=*/true);
    EXPECT_EQ(OverlayView::detail(dictation.state()), "Press fn to finish · Esc cancels");
    dictation.state().setActivationMode(ActivationMode::holdToSpeak);
    dictation.state().setShortcut(
        {.keyCode = 40, .modifiers = {Modifiers::shift, Modifiers::command}});
    EXPECT_EQ(OverlayView::detail(dictation.state()), "Release ⇧⌘K · Esc cancels");
    dictation.end();
    EXPECT_EQ(OverlayView::detail(dictation.state()), "Finishing your prompt");
}

TEST(OverlayTextTest, theTranscriptIsShownOnceItIsInserted) {
    DictationHarness dictation;
    dictation.state().setIntentCheckEnabled(false);
    dictation.dictate("what was said");
    ASSERT_EQ(dictation.phase(), "success");
    EXPECT_EQ(OverlayView::detail(dictation.state()), "what was said");
}

TEST(OverlayTextTest, withoutWordsAFailureShowsItsReason) {
    DictationHarness dictation("");
    EXPECT_EQ(OverlayView::detail(dictation.state()), "Ready");
    dictation.begin();
    ASSERT_TRUE(dictation.state().phase().get().message());
    EXPECT_EQ(OverlayView::detail(dictation.state()), *dictation.state().phase().get().message());
}

TEST(PanelOriginTest, restsAboveTheUsableAreaOfTheScreenUnderThePointer) {
    MemoryScreens screens;
    screens.screens = {
        {.frame = {0, 0, 1000, 800}, .visibleFrame = {0, 0, 1000, 800}},
        {.frame = {1000, 0, 2000, 1000}, .visibleFrame = {1100, 0, 1900, 960}},
    };
    const QSize panel(200, 80);
    const auto origin = [&](Point pointer, double offset = 0) {
        screens.pointer = pointer;
        return panelOrigin(screens, panel, offset);
    };
    EXPECT_EQ(origin({999, 10}), (Point{400, 692}));
    EXPECT_EQ(origin({1000, 10}), (Point{1950, 852}));
    EXPECT_EQ(origin({1000, 10}, /*offset=*/-5), (Point{1950, 857}));
    EXPECT_EQ(origin({-5, 10}), (Point{400, 692})) << "on no screen: the main one";
    screens.screens.clear();
    EXPECT_EQ(origin({5, 10}), std::nullopt);
}

class OverlayPanelTest : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(panel); }

    /// Runs queued work, and the resulting movement to its end.
    void settle() {
        dictation.platform.runUntilIdle();
        const bool isIdle = dictation.state().phase().get().is(AppState::Phase::Case::idle);
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return isIdle ? !panel->isVisible()
                          : panel->windowOpacity() == 1 && panel->pos() == restingPlace();
        }));
    }

    QPoint restingPlace() {
        const auto origin = panelOrigin(dictation.platform.screens, panel->size(), 0);
        return QPointF(origin->x, origin->y).toPoint();
    }

    DictationHarness dictation;
    OverlayWindowController controller{dictation.state().shared_from_this(),
                                       dictation.platform.bundle()};
    QWidget* const panel = QApplication::topLevelWidgets().value(0); // the only window
};

TEST_F(OverlayPanelTest, followsADictation) {
    dictation.platform.runUntilIdle();
    EXPECT_FALSE(panel->isVisible());

    dictation.begin();
    EXPECT_EQ(panel->size(), QSize(262, 82));
    EXPECT_EQ(panel->pos(), restingPlace() + QPoint(0, 5)) << "settles from below";
    settle();
    EXPECT_EQ(panel->pos(), QPoint((1280 - 262) / 2, 770 - 28 - 82));

    dictation.end();
    dictation.result("Rename the button", /*isFinal=*/true);
    dictation.metadata();
    dictation.platform.advance(std::chrono::milliseconds(20));
    ASSERT_EQ(dictation.phase(), "reviewing Rename the button.");
    settle();
    EXPECT_EQ(panel->size(), QSize(492, 390));
    EXPECT_EQ(panel->pos(), QPoint((1280 - 492) / 2, 770 - 28 - 390));

    dictation.confirm();
    ASSERT_EQ(dictation.phase(), "success");
    settle();
    EXPECT_EQ(panel->size(), QSize(262, 82));
    dictation.platform.advance(std::chrono::seconds(2));
    ASSERT_EQ(dictation.phase(), "idle");
    settle();
    EXPECT_FALSE(panel->isVisible());
}

TEST_F(OverlayPanelTest, keepsALongTranscriptApartFromTheEdge) {
    dictation.state().setIntentCheckEnabled(false);
    const std::string words = "a transcript that is far too long for the one line of the capsule";
    dictation.dictate(words);
    settle();
    for (const auto* text : panel->findChildren<QLabel*>()) {
        if (text->text().toStdString() == words) {
            EXPECT_EQ(text->width(), 238 - 2 * 13 - 42 - 11 - 11 - 2);
            return;
        }
    }
    FAIL() << "nothing shows it";
}

TEST_F(OverlayPanelTest, takesNeitherFocusNorClicks) {
    dictation.begin();
    const auto flags = panel->windowFlags();
    EXPECT_TRUE(flags.testFlag(Qt::WindowTransparentForInput));
    EXPECT_TRUE(flags.testFlag(Qt::WindowDoesNotAcceptFocus));
    EXPECT_TRUE(panel->testAttribute(Qt::WA_ShowWithoutActivating));
}

TEST_F(OverlayPanelTest, followsTheCompositor) {
    dictation.begin();
    auto& server = dictation.platform.windowFacilities;
    const auto corner = [this] {
        return panel->window()->grab().toImage().pixelColor(0, 0).rgba();
    };
    EXPECT_TRUE(panel->mask().isEmpty());
    EXPECT_EQ(server.blurred.size(), 1U);
    server.compositing.set(false);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !panel->mask().isEmpty(); }));
    EXPECT_TRUE(panel->isVisible());
    EXPECT_FALSE(panel->mask().contains(QPoint(0, 0))) << "the corners are cut off";
    EXPECT_EQ(corner(), GlassCapsule::opaqueGlass().rgba()) << "dark under what fades";
    server.compositing.set(true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return panel->mask().isEmpty(); }));
    EXPECT_LT(qAlpha(corner()), 64) << "no more than the shadow";
}

} // namespace
} // namespace orlune
