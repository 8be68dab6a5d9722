// What our own windows receive of keys that somebody else takes.

#include "platform/linux/keys/LocalKeyFilter.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QTest>
#include <gtest/gtest.h>

namespace orlune {
namespace {

/// As the window system delivers it: to the window, with the number of a key.
void press(QWidget& window, Qt::Key key) {
    constexpr quint32 anyKeycode = 9;
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, {}, anyKeycode, /*nativeVirtualKey=*/0, /*nativeModifiers=*/0);
        QApplication::sendEvent(window.windowHandle(), &event);
    }
}

TEST(LocalKeyFilterTest, leavesEscapeToAnOpenMenu) {
    int asked = 0;
    const LocalKeyFilter filter([&](const auto&) {
        ++asked;
        return KeyEventAnswer::swallow;
    });
    QWidget window;
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QMenu menu(&window);
    int chosen = 0;
    QObject::connect(menu.addAction("Paste"), &QAction::triggered, [&] { ++chosen; });
    menu.popup({});
    press(window, Qt::Key_Down);
    press(window, Qt::Key_Return);
    EXPECT_EQ(chosen, 0) << "all other keys are taken";
    EXPECT_TRUE(menu.isVisible());
    asked = 0;
    press(window, Qt::Key_Escape);
    EXPECT_FALSE(menu.isVisible());
    EXPECT_EQ(asked, 2) << "who takes it hears of it all the same";
}

} // namespace
} // namespace orlune
