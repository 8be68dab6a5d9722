// Rows with spacers, and the controls' reactions to mouse and keyboard.

#include "ui/Button.h"
#include "ui/CrossFade.h"
#include "ui/Stack.h"
#include "ui/Toggle.h"

#include <QApplication>
#include <QTest>
#include <gtest/gtest.h>

#include <memory>

namespace orlune::ui {
namespace {

QWidget* block(int width) {
    auto* widget = new QWidget;
    widget->setFixedSize(width, 10);
    return widget;
}

TEST(StackTest, aSpacerHasAGapOnEitherSideAndAHiddenPartHasNone) {
    auto* const hidden = block(5);
    auto* const last = block(30);
    const std::unique_ptr<QWidget> parts(
        row({.spacing = 18}, {block(20), spacer(2), hidden, last}));
    hidden->hide();
    parts->setAttribute(Qt::WA_DontShowOnScreen);
    parts->show();
    EXPECT_EQ(parts->minimumSizeHint().width(), 20 + 18 + 2 + 18 + 30);
    parts->resize(200, 10);
    QApplication::processEvents();
    EXPECT_EQ(last->geometry().right(), 199);
    const std::unique_ptr<QWidget> ending(row({.spacing = 11}, {block(42), block(7), spacer(2)}));
    EXPECT_EQ(ending->minimumSizeHint().width(), 42 + 11 + 7 + 11 + 2);
}

// A fully opaque opacity effect cannot draw a widget that has an effect too.
TEST(CrossFadeTest, onePaintsInsideAnother) {
    auto* const inner = new CrossFade(new Button(QStringLiteral("Title"), {}));
    CrossFade outer(inner);
    outer.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&outer));
    inner->change(Spring(/*response=*/2, /*dampingFraction=*/1), [] {});
    outer.change(Spring(/*response=*/0.1, /*dampingFraction=*/0.2), [] {}); // overshoots
    EXPECT_TRUE(QTest::qWaitFor([&] { return !outer.isFading(); }));
    EXPECT_TRUE(inner->isFading());
}

/// A window with one control of each kind, in its initial state.
struct ControlsTest : testing::Test {
    ControlsTest() {
        window.reset(padded(column({.spacing = 20, .alignment = Alignment::leading},
                                   {bordered, plain, fillingWidth(toggle), other}),
                            20));
        window->setFixedWidth(500);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&*window));
        other->setFocus(Qt::MouseFocusReason);
        QApplication::processEvents();
    }

    QImage picture() const {
        QApplication::processEvents();
        return window->grab().toImage();
    }

    Button* bordered = new Button(QStringLiteral("Bordered"), {});
    Button* plain = new Button(QStringLiteral("Plain"), {.style = ButtonStyle::plain});
    Toggle* toggle =
        new Toggle(QStringLiteral("Title"), QStringLiteral("A somewhat longer caption"));
    QWidget* other = [] {
        auto* widget = block(10);
        widget->setFocusPolicy(Qt::StrongFocus);
        return widget;
    }();
    std::unique_ptr<QWidget> window;
};

TEST_F(ControlsTest, theRingIsOnlyForTheKeyboard) {
    const auto untouched = picture();
    for (QWidget* const control : {static_cast<QWidget*>(bordered), static_cast<QWidget*>(plain),
                                   static_cast<QWidget*>(toggle)}) {
        const auto name = control->metaObject()->className();
        const int clicks = control == toggle ? 2 : 1; // the second one restores its state
        for (int count = 0; count < clicks; ++count) {
            QTest::mouseClick(control, Qt::LeftButton, {}, QPoint(5, 5));
        }
        EXPECT_TRUE(control->hasFocus()) << name;
        EXPECT_EQ(picture(), untouched) << name << " after a click";
        other->setFocus();
        control->setFocus();
        EXPECT_EQ(picture(), untouched) << name << " that was given the focus after a click";
        control->setFocus(Qt::TabFocusReason);
        other->setFocus(Qt::TabFocusReason);
        EXPECT_EQ(picture(), untouched) << name << " that was left with Tab";
        control->setFocus(Qt::BacktabFocusReason);
        EXPECT_NE(picture(), untouched) << name << " that was reached with Tab";
        QTest::mouseClick(control, Qt::RightButton, {}, QPoint(5, 5));
        EXPECT_EQ(picture(), untouched) << name << " that was reached with Tab and clicked";
    }
    bordered->setFocus(Qt::TabFocusReason);
    toggle->setFocus();
    EXPECT_NE(picture(), untouched) << "the program moved on a focus that the keyboard has";
}

TEST_F(ControlsTest, aToggleAnswersOnItsBoxAndItsWordsOnly) {
    const auto clickAt = [this](int x) {
        const QPoint place(toggle->mapTo(window.get(), QPoint(x, 8)));
        auto* const met = window->childAt(place);
        QTest::mouseClick(met ? met : window.get(), Qt::LeftButton, {},
                          (met ? met : window.get())->mapFrom(window.get(), place));
    };
    clickAt(8);
    EXPECT_TRUE(toggle->isChecked());
    clickAt(40);
    EXPECT_FALSE(toggle->isChecked());
    clickAt(400);
    EXPECT_FALSE(toggle->isChecked());
}

TEST_F(ControlsTest, aPlainButtonIsAsLargeAsItsTitle) {
    const QFontMetricsF metrics(plain->font());
    EXPECT_NEAR(plain->width(), metrics.horizontalAdvance(plain->text()), 1);
    EXPECT_NEAR(plain->height(), metrics.height(), 1);
}

} // namespace
} // namespace orlune::ui
