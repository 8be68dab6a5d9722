// Keys through the desktop's own portal, into a native window.
#include "platform/linux/portals/Portal.h"
#include "platform/linux/portals/RemoteDesktopInjector.h"
#include "platform/linux/portals/TokenStore.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/wayland/NativeWindow.h"
#include "tests/desktop/wayland/UserKeyboard.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace orlune::desktop {
namespace {

TEST(InjectedKeys, ArriveInTheOrderTheyWerePressed) {
    const auto hands = UserKeyboard::open(); // a seat with a keyboard, as a person's has
    NativeWindow window(NativeWindow::Toolkit::qt);
    const auto portal = Portal::open();
    ASSERT_TRUE(portal);
    const test::TemporaryFolder folder;
    TokenStore tokens(folder.path(), "token");
    RemoteDesktopInjector injector(*portal, tokens);
    ASSERT_TRUE(waitUntil([&] {
        injector.requestAccess();
        return injector.isReady();
    })) << injector.reasonForUnavailability();
    std::string wanted;
    for (int round = 0; round < 60; ++round) {
        for (const auto letter : {key::a, key::d, key::v}) {
            injector.press(letter);
            injector.release(letter);
        }
        wanted += "adv";
    }
    EXPECT_TRUE(window.receives(wanted)) << window.text();
}

} // namespace
} // namespace orlune::desktop
