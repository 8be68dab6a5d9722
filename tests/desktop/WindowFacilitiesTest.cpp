#include "platform/linux/windows/DesktopDisplayOptions.h"
#include "platform/linux/windows/QtScreens.h"
#include "platform/linux/windows/X11WindowFacilities.h"
#include "platform/linux/x11/QtConnection.h"
#include "tests/desktop/Desktop.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QMap>
#include <QRasterWindow>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <string_view>
#include <xcb/xcb.h>

namespace orlune {

// gtest finds it by its name.
static void PrintTo(const Screen& screen, std::ostream* stream) {
    const auto& rect = screen.visibleFrame;
    *stream << rect.width << "x" << rect.height << "+" << rect.x << "+" << rect.y;
}

namespace {

using desktop::Program;
using desktop::waitUntil;

/// Two adjacent monitors, 1000x800 each, the right one with two pixels per unit. The toolkit
/// queries them when it starts. Only a boxed session is changed.
[[maybe_unused]] const bool hasTwoScreens = [] {
    return std::getenv("ORLUNE_SESSION")
           && setenv("QT_SCREEN_SCALE_FACTORS", "1;2", /*overwrite=*/1) == 0
           && std::system("xrandr --setmonitor left 1000/265x800/212+0+0 screen &&"
                          "xrandr --setmonitor right 1000/265x800/212+1000+0 none")
                  == 0;
}();

void setNumbers(xcb_window_t window, std::string_view property, xcb_atom_t type,
                const std::vector<std::uint32_t>& numbers) {
    auto* connection = qtConnection();
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window,
                        atomNamed(connection, property, /*onlyIfExists=*/false), type, 32,
                        static_cast<std::uint32_t>(numbers.size()), numbers.data());
}

/// A panel of the desktop that reserves `strut`.
class Panel {
  public:
    Panel(std::string_view property, const std::vector<std::uint32_t>& strut) {
        const auto window = static_cast<xcb_window_t>(window_.winId());
        setNumbers(window, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM,
                   {atomNamed(qtConnection(), "_NET_WM_WINDOW_TYPE_DOCK", /*onlyIfExists=*/false)});
        setNumbers(window, property, XCB_ATOM_CARDINAL, strut);
        window_.show();
    }

  private:
    QRasterWindow window_;
};

TEST(Screens, WhatPanelsLeaveOfEachScreen) {
    QtScreens screens;
    const Rect left{0, 0, 1000, 800};
    const Rect right{1000, 0, 500, 400};
    const auto becomes = [&](const Rect& leftRest, const Rect& rightRest) {
        const std::vector<Screen> expected{{left, leftRest}, {right, rightRest}};
        return waitUntil([&] { return screens.all() == expected; })
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << testing::PrintToString(screens.all());
    };
    EXPECT_TRUE(becomes(left, right));
    EXPECT_EQ(screens.main()->frame, left);
    {
        const Panel lower("_NET_WM_STRUT_PARTIAL", {0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 1000, 1999});
        EXPECT_TRUE(becomes(left, {1000, 0, 500, 380}));
        // Between the screens: it extends over the left one, and takes nothing from it.
        const Panel middle("_NET_WM_STRUT_PARTIAL", {1060, 0, 0, 0, 0, 799, 0, 0, 0, 0, 0, 0});
        EXPECT_TRUE(becomes(left, {1030, 0, 470, 380}));
        const Panel upper("_NET_WM_STRUT", {0, 0, 30, 0});
        EXPECT_TRUE(becomes({0, 30, 1000, 770}, {1030, 15, 470, 365}));
    }
    EXPECT_TRUE(becomes(left, right));
    // From a window manager that draws its own panels.
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(qtConnection())).data->root;
    setNumbers(root, "_GTK_WORKAREAS_D0", XCB_ATOM_CARDINAL,
               {0, 28, 1000, 772, 1000, 0, 1000, 780});
    EXPECT_TRUE(becomes({0, 28, 1000, 772}, {1000, 0, 500, 390}));
}

TEST(WindowFacilities, ReportsWhenCompositingBeginsAndEnds) {
    const X11WindowFacilities facilities;
    EXPECT_FALSE(facilities.isCompositing().get());
    std::vector<bool> changes;
    const auto subscription =
        facilities.isCompositing().subscribe([&](bool isOn) { changes.push_back(isOn); });
    {
        const Program compositor({"picom", "--config", "/dev/null", "--backend", "xrender"});
        EXPECT_TRUE(waitUntil([&] { return facilities.isCompositing().get(); }));
        EXPECT_TRUE(X11WindowFacilities().isCompositing().get()) << "one that is there already";
    }
    EXPECT_TRUE(waitUntil([&] { return !facilities.isCompositing().get(); }));
    EXPECT_THAT(changes, testing::ElementsAre(true, false));
}

TEST(WindowFacilities, ReportsThatAnotherWindowIsActive) {
    X11WindowFacilities facilities;
    int count = 0;
    const Subscription subscription = facilities.activeWindowDidChange().connect([&] { ++count; });
    const Program first({"xterm", "-class", "First"});
    EXPECT_TRUE(waitUntil([] { return desktop::focusedClass() == "First"; }));
    EXPECT_TRUE(waitUntil([&] { return count == 1; }));
    {
        const Program second({"xterm", "-class", "Second"});
        EXPECT_TRUE(waitUntil([] { return desktop::focusedClass() == "Second"; }));
        EXPECT_TRUE(waitUntil([&] { return count == 2; }));
    }
    EXPECT_TRUE(waitUntil([&] { return count == 3; })) << "back to the first";
}

TEST(WindowFacilities, BringsAWindowForwardAlthoughAnotherProgramWasUsedSince) {
    X11WindowFacilities facilities;
    QRasterWindow window;
    window.resize(300, 200);
    window.show();
    EXPECT_TRUE(waitUntil([&] { return window.isActive(); }));
    const Program other({"xterm", "-class", "Other"});
    EXPECT_TRUE(waitUntil([] { return desktop::focusedClass() == "Other"; }));
    desktop::run({"xdotool", "type", "ls"});
    facilities.activate(window.winId());
    EXPECT_TRUE(waitUntil([&] { return window.isActive(); }));
}

TEST(WindowFacilities, AsksForBlurInPixelsOfTheDevice) {
    X11WindowFacilities facilities;
    QRasterWindow window; // only known to us yet
    facilities.setBlurBehind(window.winId(), {{0, 0.5, 10, 2}, {5, 5, 0.1, 9}, {20, 1, 1.5, 3}},
                             1.5);
    const auto blur = [id = std::to_string(window.winId())] {
        return desktop::run({"xprop", "-id", id, "_KDE_NET_WM_BLUR_BEHIND_REGION"});
    };
    EXPECT_THAT(blur(), testing::HasSubstr("= 0, 1, 15, 3, 30, 2, 2, 4\n"));
    facilities.setBlurBehind(window.winId(), {}, 1.5);
    EXPECT_THAT(blur(), testing::HasSubstr("not found"));
}

/// The desktop's portal, with settings in groups.
class Portal final : public QDBusVirtualObject {
  public:
    using Groups = QMap<QString, QVariantMap>;

    explicit Portal(Groups groups) : groups_(std::move(groups)) {
        qDBusRegisterMetaType<Groups>();
        EXPECT_TRUE(bus_.registerVirtualObject(path, this));
        EXPECT_TRUE(bus_.registerService(name));
    }
    ~Portal() override {
        bus_.unregisterObject(path);
        bus_.unregisterService(name);
        QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
    }

    void change(const QString& group, const QString& key, const QVariant& value) {
        groups_[group][key] = value; // for whoever asks from now on
        auto signal = QDBusMessage::createSignal(path, interface, QStringLiteral("SettingChanged"));
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        bus_.send(signal);
    }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        return message.interface() == interface && message.member() == QStringLiteral("ReadAll")
               && connection.send(message.createReply(QVariant::fromValue(groups_)));
    }

  private:
    const QString name = QStringLiteral("org.freedesktop.portal.Desktop");
    const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
    const QString interface = QStringLiteral("org.freedesktop.portal.Settings");

    Groups groups_;
    QDBusConnection bus_ =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("portal"));
};

TEST(DisplayOptions, FollowTheSettingsOfEachDesktop) {
    const QString appearance = QStringLiteral("org.freedesktop.appearance");
    const QString gnome = QStringLiteral("org.gnome.desktop.interface");
    const QString kde = QStringLiteral("org.kde.kdeglobals.KDE");
    const QString kdeSpeed = QStringLiteral("AnimationDurationFactor");

    const DesktopDisplayOptions options;
    const auto becomes = [&](bool isReduced) {
        return waitUntil([&] { return options.shouldReduceMotion().get() == isReduced; });
    };
    EXPECT_FALSE(options.shouldReduceMotion().get()) << "no portal yet";
    Portal portal({{gnome, {{QStringLiteral("enable-animations"), false}}}});
    EXPECT_TRUE(becomes(true));
    portal.change(gnome, QStringLiteral("enable-animations"), true);
    EXPECT_TRUE(becomes(false));
    portal.change(kde, kdeSpeed, QStringLiteral("0"));
    EXPECT_TRUE(becomes(true));
    portal.change(kde, kdeSpeed, 0.5);
    EXPECT_TRUE(becomes(false));
    portal.change(appearance, QStringLiteral("reduced-motion"), 1U);
    EXPECT_TRUE(becomes(true));

    const DesktopDisplayOptions later;
    EXPECT_FALSE(later.shouldReduceMotion().get()) << "nobody waits for the answer";
    EXPECT_FALSE(DesktopDisplayOptions(false).shouldReduceMotion().get());
    EXPECT_TRUE(DesktopDisplayOptions(true).shouldReduceMotion().get());
}

} // namespace
} // namespace orlune
