// The desktops in boxes themselves: the user's keyboard reaches native windows, one at a time, and
// the screen shows them.
#include "tests/desktop/Desktop.h"
#include "tests/desktop/wayland/NativeWindow.h"
#include "tests/desktop/wayland/Screen.h"
#include "tests/desktop/wayland/UserKeyboard.h"

#include <gtest/gtest.h>

#include <set>

namespace orlune::desktop {
namespace {

using Toolkit = NativeWindow::Toolkit;

std::string nameOf(Toolkit toolkit) {
    switch (toolkit) {
    case Toolkit::gtk:
        return "Gtk";
    case Toolkit::qt:
        return "Qt";
    case Toolkit::terminal:
        return "Terminal";
    }
    return "";
}

class NativeWindows : public testing::TestWithParam<Toolkit> {
  protected:
    void SetUp() override {
        for (const auto toolkit : {GetParam(), Toolkit::qt}) {
            if (const auto reason = NativeWindow::reasonForAbsence(toolkit); !reason.empty()) {
                GTEST_SKIP() << reason;
            }
        }
        hands = UserKeyboard::open();
    }

    std::unique_ptr<UserKeyboard> hands;
};

TEST_P(NativeWindows, TakeWhatIsTypedWhileTheyHaveTheKeyboard) {
    NativeWindow window(GetParam());
    hands->tap({key::a});
    hands->tap({key::leftShift, key::d});
    ASSERT_TRUE(window.receives("aD")) << window.text();
    {
        NativeWindow other(Toolkit::qt);
        EXPECT_TRUE(waitUntil([&] { return !window.hasKeyboard(); }));
        hands->tap({key::v});
        EXPECT_TRUE(other.receives("v")) << other.text();
    }
    ASSERT_TRUE(waitUntil([&] { return window.hasKeyboard(); }));
    hands->tap({key::a});
    EXPECT_TRUE(window.receives("aDa")) << window.text();
}

/// The colours where two pictures differ, in the later one.
std::set<QRgb> changedColors(const QImage& earlier, const QImage& later) {
    std::set<QRgb> colors;
    for (int y = 0; y < later.height(); ++y) {
        for (int x = 0; x < later.width(); ++x) {
            if (const auto color = later.pixel(x, y); color != earlier.pixel(x, y)) {
                colors.insert(color);
            }
        }
    }
    return colors;
}

TEST_P(NativeWindows, AreSeenOnTheScreen) {
    const auto before = screenshot();
    EXPECT_EQ(before.size(), QSize(1280, 800));
    NativeWindow window(GetParam());
    hands->tap({key::a});
    ASSERT_TRUE(window.receives("a")) << window.text();
    // The window, the field, and the shades of a glyph's edges.
    constexpr std::size_t enough = 5;
    QImage after;
    EXPECT_TRUE(waitUntil([&] {
        after = screenshot();
        return changedColors(before, after).size() >= enough;
    }));
    if (const auto folder = qEnvironmentVariable("ORLUNE_PICTURES"); !folder.isEmpty()) {
        EXPECT_TRUE(after.save(folder + "/" + qEnvironmentVariable("XDG_CURRENT_DESKTOP") + "-"
                               + QString::fromStdString(nameOf(GetParam())) + ".png"));
    }
}

INSTANTIATE_TEST_SUITE_P(, NativeWindows,
                         testing::Values(Toolkit::gtk, Toolkit::qt, Toolkit::terminal),
                         [](const auto& test) { return nameOf(test.param); });

} // namespace
} // namespace orlune::desktop
