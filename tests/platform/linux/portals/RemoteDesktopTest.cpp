// The consent to paste: when the user is asked, how it is remembered, and what a portal that fails
// costs.
#include "platform/linux/portals/RemoteDesktopInjector.h"
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

struct RemoteDesktopTest : Test {
    void start(std::uint32_t version, const std::string& token) {
        tokens.set(token);
        scripted.emplace(bus.busAddress(), version);
        portal = Portal::open(QString::fromStdString(bus.busAddress()));
        injector.emplace(*portal, tokens);
        injector->setOnChange([this] { ++changes; });
        awaitAnswer();
    }
    void awaitAnswer() {
        EXPECT_TRUE(soon([&] { return changes > 0; }));
        changes = 0;
    }
    template <typename Condition>
    static bool soon(Condition condition) {
        return QTest::qWaitFor(condition, /*timeout=*/10'000);
    }
    bool isReadySoon() const {
        return soon([&] { return injector->isReady(); });
    }
    bool hasCallSoon(const std::string& call) const {
        return soon([&] { return std::ranges::count(scripted->calls(), call) > 0; });
    }

    test::KeyringSession bus;
    test::TemporaryFolder folder;
    TokenStore tokens{folder.path(), RemoteDesktopInjector::tokenFile};
    std::optional<ScriptedPortal> scripted;
    std::unique_ptr<Portal> portal;
    std::optional<RemoteDesktopInjector> injector;
    int changes = 0;
};

TEST_F(RemoteDesktopTest, theUserIsAskedOnceAndEachDictationHasASessionOfItsOwn) {
    start(/*version=*/2, "");
    EXPECT_THAT(injector->reasonForUnavailability(), HasSubstr("needs your permission"));
    injector->prepare();
    injector->rest();
    EXPECT_THAT(scripted->takeCalls(), IsEmpty()) << "only the user's wish opens a dialog";

    scripted->setToken("first");
    injector->requestAccess();
    awaitAnswer();
    EXPECT_EQ(injector->reasonForUnavailability(), "");
    EXPECT_TRUE(hasCallSoon("Close"));
    EXPECT_THAT(scripted->takeCalls(),
                ElementsAre("CreateSession", "SelectDevices persist_mode=2", "Start", "Close"));
    EXPECT_EQ(TokenStore(folder.path(), RemoteDesktopInjector::tokenFile).token(), "first");

    scripted->setToken("second");
    injector->prepare();
    EXPECT_FALSE(injector->isReady());
    EXPECT_TRUE(isReadySoon());
    EXPECT_TRUE(injector->press(42));
    EXPECT_TRUE(injector->release(42));
    injector->rest();
    EXPECT_FALSE(injector->press(42));
    EXPECT_TRUE(hasCallSoon("Close"));
    EXPECT_THAT(scripted->takeCalls(),
                ElementsAre("CreateSession", "SelectDevices persist_mode=2 restore_token=first",
                            "Start", "+42", "-42", "Close"));
    EXPECT_EQ(tokens.token(), "second");
}

TEST_F(RemoteDesktopTest, aRefusalStands) {
    start(/*version=*/2, "");
    scripted->answerNext("Start", Answer::refused);
    injector->requestAccess();
    awaitAnswer();
    EXPECT_THAT(injector->reasonForUnavailability(), HasSubstr("did not allow"));
    scripted->takeCalls();
    injector->prepare();
    injector->rest();
    EXPECT_THAT(scripted->takeCalls(), IsEmpty());
    // The user thinks again.
    injector->requestAccess();
    awaitAnswer();
    EXPECT_EQ(injector->reasonForUnavailability(), "");
}

TEST_F(RemoteDesktopTest, aPortalThatFailsCostsOneDictationAndNotTheConsent) {
    start(/*version=*/2, "kept");
    for (const auto* const method : {"CreateSession", "SelectDevices", "Start"}) {
        for (const auto answer : {Answer::ended, Answer::error, Answer::closedSession}) {
            if (answer == Answer::closedSession && method == std::string("CreateSession")) {
                continue;
            }
            scripted->answerNext(method, answer);
            injector->prepare();
            awaitAnswer();
            EXPECT_FALSE(injector->isReady());
            EXPECT_THAT(injector->reasonForUnavailability(), HasSubstr("the desktop portal"));
            injector->rest();
            EXPECT_EQ(tokens.token(), "kept") << method;
            injector->prepare();
            EXPECT_TRUE(isReadySoon()) << method;
            EXPECT_EQ(injector->reasonForUnavailability(), "");
            injector->rest();
            changes = 0;
        }
    }
}

TEST_F(RemoteDesktopTest, aTokenThatTheDesktopNoLongerKnowsIsForgotten) {
    for (const auto answer : {Answer::refused, Answer::none}) {
        start(/*version=*/2, "withdrawn");
        if (answer == Answer::none) {
            scripted->answerNext("Start", answer);
            injector->prepare();
            awaitAnswer();
            EXPECT_THAT(injector->reasonForUnavailability(), HasSubstr("in time"));
            EXPECT_EQ(tokens.token(), "withdrawn") << "the machine may just be slow";
            injector->rest();
        }
        scripted->answerNext("Start", answer);
        injector->prepare();
        awaitAnswer();
        EXPECT_THAT(injector->reasonForUnavailability(), HasSubstr("asked again"));
        EXPECT_EQ(tokens.token(), "");
        if (answer == Answer::none) {
            EXPECT_TRUE(hasCallSoon("Close request")) << "its dialog must not stay open";
        }
        injector.reset();
        scripted.reset();
    }
}

TEST_F(RemoteDesktopTest, aSessionThatEndsWhileListeningIsOpenedByTheNextDictation) {
    start(/*version=*/2, "kept");
    injector->prepare();
    EXPECT_TRUE(isReadySoon());
    changes = 0;
    scripted->closeSession();
    awaitAnswer();
    EXPECT_FALSE(injector->isReady());
    EXPECT_FALSE(injector->press(42));
    injector->rest();
    injector->prepare();
    EXPECT_TRUE(isReadySoon());
}

TEST_F(RemoteDesktopTest, aPortalThatCrashesIsUsedAgainWhenItIsBack) {
    start(/*version=*/2, "kept");
    scripted->answerNext("Start", Answer::none);
    injector->prepare();
    EXPECT_TRUE(hasCallSoon("Start"));
    scripted.reset();
    awaitAnswer();
    EXPECT_NE(injector->reasonForUnavailability(), "");
    EXPECT_EQ(tokens.token(), "kept");
    scripted.emplace(bus.busAddress(), /*version=*/2);
    EXPECT_TRUE(isReadySoon()) << "the dictation still runs";
}

TEST_F(RemoteDesktopTest, aPortalThatCannotRememberIsAskedAtTheStartAndOnlyOnce) {
    start(/*version=*/1, "consented");
    EXPECT_TRUE(isReadySoon());
    EXPECT_THAT(scripted->takeCalls(), ElementsAre("CreateSession", "SelectDevices", "Start"));
    injector->prepare();
    injector->rest();
    EXPECT_TRUE(injector->isReady()) << "the session lasts as long as the program";
    EXPECT_THAT(scripted->takeCalls(), IsEmpty());
    changes = 0;
    scripted->closeSession();
    awaitAnswer();
    EXPECT_THAT(injector->reasonForUnavailability(), HasSubstr("withdrawn"));
}

TEST_F(RemoteDesktopTest, aDesktopThatIsNotReadyAtTheStartIsAskedAgain) {
    tokens.set("consented");
    scripted.emplace(bus.busAddress(), /*version=*/1);
    scripted->answerNext("Start", Answer::ended);
    portal = Portal::open(QString::fromStdString(bus.busAddress()));
    injector.emplace(*portal, tokens);
    EXPECT_TRUE(isReadySoon());
    EXPECT_EQ(std::ranges::count(scripted->calls(), "Start"), 2);
}

TEST_F(RemoteDesktopTest, aPortalWithoutAKeyboardSaysSo) {
    start(/*version=*/0, "");
    EXPECT_THAT(injector->reasonForUnavailability(), HasSubstr("lets no program press keys"));
    injector->requestAccess();
    injector->prepare();
    EXPECT_FALSE(injector->isReady());
}

} // namespace
} // namespace orlune
