#include "platform/linux/secrets/SecretServiceItems.h"

#include "tests/support/KeyringSession.h"
#include "tests/support/ScriptedSecretService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

namespace orlune {
namespace {

using Code = SecretStatus::Code;
using testing::HasSubstr;
using namespace std::chrono_literals;

constexpr auto accessibility = SecretAccessibility::afterFirstUnlockThisDeviceOnly;
const SecretItemQuery query = {"app.orlune.Orlune", "testKey"};

class SecretServiceItemsTest : public testing::Test {
  protected:
    SecretServiceItemsTest() { useBus(session.busAddress()); }
    ~SecretServiceItemsTest() override { ::unsetenv("DBUS_SESSION_BUS_ADDRESS"); }

    static void useBus(const std::string& address) {
        ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), /*replace=*/1);
    }

    /// The result of a read, once all earlier operations are finished.
    static SecretStatus settled(SecretServiceItems& items) {
        auto match = items.copyMatching(query);
        for (int tries = 0; tries < 50 && match.status.code == Code::timedOut; ++tries) {
            match = items.copyMatching(query);
        }
        return match.status;
    }

    test::KeyringSession session;
    SecretServiceItems::Options options = {/*hasDisplay=*/false, 3s, 1500ms};
};

TEST_F(SecretServiceItemsTest, AddsReadsAndRemoves) {
    session.startKeyring("password");
    SecretServiceItems items(options);
    EXPECT_EQ(items.copyMatching(query).status.code, Code::itemNotFound);
    EXPECT_EQ(items.remove(query).code, Code::itemNotFound);
    for (const auto& data : {std::string("abc"), std::string("Schlüssel – 鍵"),
                             std::string("\xff\0\xfe", 3), std::string(2000, 'x')}) {
        items.remove(query);
        const auto status = items.add(query, data, accessibility);
        EXPECT_TRUE(status.isSuccess()) << status.message;
        EXPECT_EQ(items.copyMatching(query).data, data);
        EXPECT_EQ(session.countItems("testKey"), 1);
    }
    EXPECT_EQ(items.add(query, "another", accessibility).code, Code::duplicateItem);
    EXPECT_EQ(items.copyMatching({query.service, "other"}).status.code, Code::itemNotFound);
    EXPECT_TRUE(items.remove(query).isSuccess());
    EXPECT_EQ(items.copyMatching(query).data, std::nullopt);
    EXPECT_EQ(session.countItems("testKey"), 0);
}

TEST_F(SecretServiceItemsTest, SurvivesARestartOfTheKeyringAndALateStart) {
    SecretServiceItems items(options);
    EXPECT_EQ(items.copyMatching(query).status.code, Code::notAvailable);
    session.startKeyring("password");
    EXPECT_TRUE(items.add(query, "abc", accessibility).isSuccess());
    session.stopKeyring();
    EXPECT_EQ(items.copyMatching(query).status.code, Code::notAvailable);
    session.startKeyring("password");
    EXPECT_EQ(items.copyMatching(query).data, "abc");
}

TEST_F(SecretServiceItemsTest, TheEndOfTheBusIsNotOurs) {
    session.startKeyring("password");
    SecretServiceItems items(options);
    EXPECT_TRUE(items.add(query, "abc", accessibility).isSuccess());
    session.restartBus();
    EXPECT_EQ(items.copyMatching(query).status.code, Code::notAvailable);
    session.startKeyring("password");
    EXPECT_EQ(items.copyMatching(query).data, "abc");
}

TEST_F(SecretServiceItemsTest, EachReasonForAMissingSecretIsReported) {
    const auto expectEverywhere = [&](SecretServiceItems& items, Code code, const char* text) {
        const auto read = items.copyMatching(query);
        EXPECT_EQ(read.status.code, code) << read.status.message;
        EXPECT_THAT(read.status.message, HasSubstr(text));
        const auto added = items.add(query, "abc", accessibility);
        EXPECT_EQ(added.code, code) << added.message;
        EXPECT_THAT(added.message, HasSubstr(text));
    };
    {
        SCOPED_TRACE("no bus");
        useBus("unix:path=/nowhere/bus");
        SecretServiceItems items(options);
        expectEverywhere(items, Code::notAvailable, "no session bus");
    }
    useBus(session.busAddress());
    SecretServiceItems items(options);
    {
        SCOPED_TRACE("a bus without a provider");
        expectEverywhere(items, Code::notAvailable, "No keyring answers");
    }
    {
        SCOPED_TRACE("no default collection");
        session.startKeyring(std::nullopt);
        expectEverywhere(items, Code::noDefaultStore, "no default keyring");
        session.stopKeyring();
    }
    {
        SCOPED_TRACE("locked, and nobody to ask");
        session.startKeyring("password");
        EXPECT_TRUE(items.add(query, "abc", accessibility).isSuccess());
        session.stopKeyring();
        session.startKeyring("another password");
        expectEverywhere(items, Code::interactionNotAllowed, "locked");
        EXPECT_EQ(items.remove(query).code, Code::interactionNotAllowed);
    }
}

TEST_F(SecretServiceItemsTest, AProviderThatHangsTimesOut) {
    session.startKeyring("password");
    auto brief = options;
    brief.readBound = 100ms;
    brief.changeBound = 100ms;
    const auto started = std::chrono::steady_clock::now();
    {
        SecretServiceItems patient(options);
        EXPECT_TRUE(patient.add(query, "old", accessibility).isSuccess());
        SecretServiceItems items(brief);
        session.freezeKeyring();
        const auto read = items.copyMatching(query);
        EXPECT_EQ(read.status.code, Code::timedOut);
        EXPECT_THAT(read.status.message, HasSubstr("did not answer within 100 ms"));
        EXPECT_EQ(items.remove(query).code, Code::timedOut);
        EXPECT_EQ(items.add(query, "new", accessibility).code, Code::timedOut);
        session.thawKeyring();
        EXPECT_EQ(settled(items).code, Code::itemNotFound)
            << "the late removal happens, the late add does not";
        EXPECT_EQ(session.countItems("testKey"), 0);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - started, 5s);
    session.freezeKeyring();
    const auto frozen = std::chrono::steady_clock::now();
    {
        SecretServiceItems items(brief);
        EXPECT_EQ(items.copyMatching(query).status.code, Code::timedOut);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - frozen, 2s) << "quitting must not hang either";
}

class ScriptedSecretServiceTest : public SecretServiceItemsTest {
  protected:
    // Connected before times are measured.
    ScriptedSecretServiceTest() { settled(hasty); }

    test::ScriptedSecretService service{session.busAddress()};
    SecretServiceItems patient{{/*hasDisplay=*/true, 5s, 5s}};
    SecretServiceItems hasty{{/*hasDisplay=*/true, 300ms, 300ms}};
};

TEST_F(ScriptedSecretServiceTest, AReadThatTimedOutLeavesItsPromptForTheNextRead) {
    ASSERT_TRUE(patient.add(query, "abc", accessibility).isSuccess());
    service.lock();
    EXPECT_EQ(hasty.copyMatching(query).status.code, Code::timedOut);
    service.waitForPrompt();
    const auto read = hasty.copyMatching(query);
    EXPECT_EQ(read.status.code, Code::timedOut);
    EXPECT_THAT(read.status.message, HasSubstr("waiting to be unlocked"));
    service.answerPrompt(/*isUnlocked=*/true);
    EXPECT_EQ(settled(hasty).message, "");
    EXPECT_EQ(service.promptCount(), 1) << "nobody is asked twice";
}

TEST_F(ScriptedSecretServiceTest, ThePatientWaitForAPromptWithoutLimit) {
    ASSERT_TRUE(patient.add(query, "abc", accessibility).isSuccess());
    service.lock();
    std::promise<void> isTold;
    SecretServiceItems terminal{{/*hasDisplay=*/true, 200ms, 200ms, [&] { isTold.set_value(); }}};
    auto person = std::async(std::launch::async, [&] {
        isTold.get_future().get(); // so the time limit has passed
        service.answerPrompt(/*isUnlocked=*/true);
    });
    EXPECT_EQ(terminal.copyMatching(query).data, "abc");
    person.get();
}

TEST_F(ScriptedSecretServiceTest, DestructionDuringAPromptDoesNotDismissIt) {
    service.lock();
    {
        SecretServiceItems ending{{/*hasDisplay=*/true, 300ms, 300ms}};
        EXPECT_EQ(ending.add(query, "abc", accessibility).code, Code::timedOut);
        service.waitForPrompt();
    }
    EXPECT_EQ(hasty.copyMatching(query).status.code, Code::timedOut); // its messages come later
    EXPECT_EQ(service.dismissalCount(), 0) << "GNOME Keyring's daemon would abort";
}

TEST_F(ScriptedSecretServiceTest, AProviderThatEndsAtItsPromptIsNotWaitedFor) {
    service.lock();
    auto crash = std::async(std::launch::async, [&] { service.endAtPrompt(); });
    const auto status = patient.copyMatching(query).status;
    crash.get();
    EXPECT_EQ(status.code, Code::notAvailable) << status.message;
    session.startKeyring("password");
    EXPECT_TRUE(patient.add(query, "abc", accessibility).isSuccess()) << "another one serves";
}

TEST_F(ScriptedSecretServiceTest, ASessionThatIsRefusedOnceIsOpenedAgain) {
    SecretServiceItems items{{/*hasDisplay=*/true, 5s, 5s}};
    service.refuseNextSession("Client public key size is invalid");
    EXPECT_TRUE(items.add(query, "abc", accessibility).isSuccess());
}

TEST_F(ScriptedSecretServiceTest, KeePassXCWithNothingSharedIsReportedAndNotAskedForADatabase) {
    service.becomeKeePassXCThatSharesNothing();
    for (const auto& status :
         {patient.copyMatching(query).status, patient.add(query, "abc", accessibility)}) {
        EXPECT_EQ(status.code, Code::noDefaultStore);
        EXPECT_THAT(status.message, HasSubstr("share a group under Secret Service Integration"));
    }
}

TEST_F(ScriptedSecretServiceTest, ADismissedPromptIsNotTakenForOneThatWasNeverShown) {
    service.lock();
    auto person = std::async(std::launch::async, [&] { service.answerPrompt(false); });
    const auto status = patient.add(query, "abc", accessibility);
    person.get();
    EXPECT_EQ(status.code, Code::userCanceled);
    EXPECT_THAT(status.message, HasSubstr("dismissed"));
}

TEST_F(ScriptedSecretServiceTest, AnAddThatTimedOutAtThePromptDoesNotHappenLater) {
    service.lock();
    EXPECT_EQ(hasty.add(query, "abc", accessibility).code, Code::timedOut);
    service.answerPrompt(/*isUnlocked=*/true);
    EXPECT_EQ(settled(hasty).code, Code::itemNotFound);
    EXPECT_EQ(service.addCount(), 0);
}

TEST_F(ScriptedSecretServiceTest, AnAddThatIsAnsweredTooLateIsWithdrawn) {
    service.holdAnswersToAdds();
    EXPECT_EQ(hasty.add(query, "abc", accessibility).code, Code::timedOut);
    service.releaseAnswersToAdds();
    EXPECT_EQ(settled(hasty).code, Code::itemNotFound);
    EXPECT_EQ(service.addCount(), 1);
    EXPECT_FALSE(service.hasItem());
}

TEST_F(ScriptedSecretServiceTest, TheTextOfARefusalReachesTheUser) {
    service.refuseAdds("The database is read-only");
    const auto status = patient.add(query, "abc", accessibility);
    EXPECT_EQ(status.code, Code::refused);
    EXPECT_EQ(status.message, "The keyring refused: The database is read-only");
}

} // namespace
} // namespace orlune
