// The shortcut by the desktop's portal: when the user is asked for it, what its reports become, and
// what a portal that fails costs.
#include "platform/linux/portals/GlobalShortcuts.h"

#include "tests/support/KeyringSession.h"
#include "tests/support/ScriptedPortal.h"

#include <QTest>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace orlune {
namespace {

using test::ScriptedPortal;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Test;
using Answer = ScriptedPortal::Answer;

constexpr std::uint16_t f9 = 101;
constexpr std::uint16_t space = 49;
constexpr KeyCombination controlOptionSpace{
    .virtualKey = space, .modifiers = ModifierFlags::control | ModifierFlags::option};

struct GlobalShortcutsTest : Test {
    void start(const std::string& bound, std::uint32_t version = 1) {
        tokens.set(bound);
        scripted.emplace(bus.busAddress(), version);
        portal = Portal::open(QString::fromStdString(bus.busAddress()));
        open();
    }
    void open(KeyCombination shortcut = {.virtualKey = f9}) {
        source.emplace(
            *portal, tokens,
            GlobalShortcuts::Surroundings{.functionKey = "Control_R", .desktop = "GNOME"});
        source->setObserver({.onKey =
                                 [this](const KeyEvent& event) {
                                     const bool isDown =
                                         event.type == KeyEvent::Type::flagsChanged
                                             ? event.modifierFlags != ModifierFlags::none
                                             : event.type == KeyEvent::Type::keyDown;
                                     keys +=
                                         (isDown ? "+" : "-") + std::to_string(event.keyCode) + ' ';
                                 },
                             .onChange = [this] { ++changes; }});
        source->watch(shortcut);
    }
    template <typename Condition>
    static bool soon(Condition condition) {
        return QTest::qWaitFor(condition, /*timeout=*/10'000);
    }
    bool isBoundSoon() const {
        return soon([&] { return source->reasonForUnavailability().empty(); });
    }
    bool isUnavailableSoon(const std::string& part) const {
        return soon(
            [&] { return source->reasonForUnavailability().find(part) != std::string::npos; });
    }
    std::string keysAfter(std::initializer_list<std::pair<const char*, const char*>> reports) {
        keys.clear();
        for (const auto& [signal, shortcut] : reports) {
            scripted->report(QLatin1String(signal), QLatin1String(shortcut));
        }
        // The bus keeps the order, so an answer comes after these reports.
        bool isAnswered = false;
        portal->readNumber(QStringLiteral("any"), QStringLiteral("version"),
                           [&](auto) { isAnswered = true; });
        EXPECT_TRUE(soon([&] { return isAnswered; }));
        return keys;
    }

    test::KeyringSession bus;
    test::TemporaryFolder folder;
    TokenStore tokens{folder.path(), GlobalShortcuts::boundFile};
    std::optional<ScriptedPortal> scripted;
    std::unique_ptr<Portal> portal;
    std::optional<GlobalShortcuts> source;
    std::string keys;
    int changes = 0;
};

TEST_F(GlobalShortcutsTest, theUserIsAskedOnceForEachCombinationOfKeys) {
    start("");
    EXPECT_TRUE(isUnavailableSoon("has to be asked"));
    EXPECT_THAT(scripted->takeCalls(), IsEmpty()) << "only the user's wish opens a dialog";
    source->requestAccess();
    EXPECT_TRUE(isBoundSoon());
    EXPECT_THAT(scripted->takeCalls(),
                ElementsAre("CreateSession", "BindShortcuts dictate=F9 cancel"));

    // The next start needs no dialog.
    open();
    EXPECT_TRUE(isBoundSoon());
    scripted->takeCalls();

    // Other keys: the desktop forgets the ones before, and asks.
    source->watch(controlOptionSpace);
    EXPECT_TRUE(isUnavailableSoon("has to be asked"));
    source->requestAccess();
    EXPECT_TRUE(isBoundSoon());
    EXPECT_THAT(scripted->takeCalls(),
                ElementsAre("Close", "CreateSession", "BindShortcuts cancel", "Close",
                            "CreateSession", "BindShortcuts dictate=CTRL+ALT+space cancel"));
    EXPECT_EQ(tokens.token(), "GNOME CTRL+ALT+space");
}

TEST_F(GlobalShortcutsTest, reportsBecomeTheKeysOfTheShortcut) {
    start("GNOME F9");
    EXPECT_TRUE(isBoundSoon());
    EXPECT_TRUE(source->reportsReleases());
    EXPECT_EQ(keysAfter({{"Activated", "dictate"}}), "+101 ");
    EXPECT_EQ(keysAfter({{"Deactivated", "dictate"}, {"Deactivated", "dictate"}}), "-101 ");
    EXPECT_EQ(keysAfter({{"Activated", "cancel"}}), "") << "no dictation runs";
    source->watchEscape(true);
    EXPECT_EQ(keysAfter({{"Activated", "cancel"}, {"Deactivated", "cancel"}}), "+53 -53 ");
    // The screen is locked while the key is down.
    keysAfter({{"Activated", "dictate"}});
    source->releaseAll();
    EXPECT_EQ(keys, "+101 -101 ");
    EXPECT_EQ(keysAfter({{"Deactivated", "dictate"}}), "");
    // Repeats that end without a release.
    keysAfter({{"Activated", "dictate"}});
    QTest::qWait(500);
    keysAfter({{"Activated", "dictate"}, {"Activated", "dictate"}});
    EXPECT_TRUE(soon([&] { return keys == "-101 "; })) << keys;
}

TEST_F(GlobalShortcutsTest, aModifierAloneHasNoRelease) {
    start("GNOME Control_R");
    source->watch({.virtualKey = {}, .modifiers = ModifierFlags::function});
    EXPECT_TRUE(isBoundSoon());
    EXPECT_FALSE(source->reportsReleases());
    EXPECT_EQ(keysAfter({{"Activated", "dictate"}}), "+63 -63 ");
    EXPECT_EQ(keysAfter({{"Activated", "dictate"}, {"Deactivated", "dictate"}}), "+63 -63 ");
}

TEST_F(GlobalShortcutsTest, anAnswerThatIsNoBindingIsSaidAndCanBeAskedForAgain) {
    start("");
    EXPECT_TRUE(isUnavailableSoon("has to be asked"));
    scripted->answerNext("BindShortcuts", Answer::refused);
    source->requestAccess();
    EXPECT_TRUE(isUnavailableSoon("did not allow"));
    // GNOME 48.0 says "ended" and has bound the shortcut all the same.
    scripted->answerNext("BindShortcuts", Answer::ended);
    source->requestAccess();
    EXPECT_TRUE(isBoundSoon());
}

TEST_F(GlobalShortcutsTest, aPortalThatFailsIsTriedOnceMore) {
    for (const auto* const method : {"CreateSession", "BindShortcuts"}) {
        tokens.set("GNOME F9");
        scripted.emplace(bus.busAddress(), /*version=*/1);
        scripted->answerNext(method, Answer::error);
        portal = Portal::open(QString::fromStdString(bus.busAddress()));
        open();
        EXPECT_TRUE(isUnavailableSoon("the desktop portal ")) << method;
        EXPECT_TRUE(isBoundSoon()) << method;
        source.reset();
        scripted.reset();
    }
}

TEST_F(GlobalShortcutsTest, aSessionThatEndsReleasesTheKeyAndIsOpenedAgain) {
    start("GNOME F9");
    EXPECT_TRUE(isBoundSoon());
    keysAfter({{"Activated", "dictate"}});
    scripted->closeSession();
    EXPECT_TRUE(isUnavailableSoon("has ended the shortcut"));
    EXPECT_EQ(keys, "+101 -101 ");
    EXPECT_TRUE(isBoundSoon());
    // The portal itself.
    keysAfter({{"Activated", "dictate"}});
    scripted.reset();
    EXPECT_TRUE(isUnavailableSoon("not answered"));
    EXPECT_EQ(keys, "+101 -101 ");
    scripted.emplace(bus.busAddress(), /*version=*/1);
    EXPECT_TRUE(isBoundSoon());
    EXPECT_EQ(keysAfter({{"Activated", "dictate"}}), "+101 ");
}

TEST_F(GlobalShortcutsTest, aPortalWithoutShortcutsIsMissing) {
    start("", /*version=*/0);
    EXPECT_FALSE(source->isMissing());
    EXPECT_TRUE(soon([&] { return source->isMissing(); }));
    source->requestAccess();
    EXPECT_THAT(scripted->takeCalls(), IsEmpty());
}

} // namespace
} // namespace orlune
