// The program itself, started as a user starts it, in a session with everything real: the shortcut,
// the commands over the bus, its end, and the doctor's report.
#include "tests/desktop/Commands.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/SpeechService.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <boost/json/parse.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

namespace orlune {
namespace {

using desktop::Keyboard;
using desktop::Outcome;
using desktop::outcome;
using desktop::OwnProgram;
using desktop::phase;
using desktop::reaches;
using desktop::status;
using desktop::waitUntil;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

bool succeeds(const std::string& command) {
    return outcome({command}).exitCode == 0;
}

/// Activates an entry of the launcher's menu.
bool isDoneAsAnAction(const char* name) {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("app.orlune.Orlune"), QStringLiteral("/app/orlune/Orlune"),
        QStringLiteral("org.freedesktop.Application"), QStringLiteral("ActivateAction"));
    call << QString::fromLatin1(name) << QVariantList{} << QVariantMap{};
    return QDBusConnection::sessionBus().call(call).type() == QDBusMessage::ReplyMessage;
}

/// A key in the keyring and a speech service that accepts it, for the duration of a test.
class RunningProgram : public testing::Test {
  protected:
    RunningProgram() { EXPECT_EQ(outcome({"key", "set"}, {}, key + "\n").exitCode, 0); }
    ~RunningProgram() override { EXPECT_EQ(outcome({"key", "remove"}).exitCode, 0); }

    std::unique_ptr<OwnProgram> started() {
        auto program = std::make_unique<OwnProgram>(
            std::vector<std::string>{ORLUNE_PROGRAM, "--background"}, service.clientEnvironment());
        EXPECT_TRUE(reaches("idle")) << program->standardError();
        return program;
    }

    const std::string key = "0f1e2d3c4b5a69788796a5b4c3d2e1f0deadbeef";
    desktop::SpeechService service{key};
    Keyboard keyboard;
};

TEST_F(RunningProgram, IsOneWhicheverWayItIsLaunchedAndEndsWhenAsked) {
    const Outcome notRunning = outcome({"status"});
    EXPECT_EQ(notRunning.exitCode, 1);
    EXPECT_THAT(notRunning.error, StartsWith("orlune: Orlune isn't running"));
    EXPECT_FALSE(succeeds("show"));
    EXPECT_FALSE(succeeds("status")) << "a command has started the program";

    const auto program = started();
    EXPECT_EQ(outcome({}).exitCode, 0);
    EXPECT_EQ(outcome({"--background"}).exitCode, 0);
    EXPECT_TRUE(isDoneAsAnAction("show"));
    EXPECT_FALSE(isDoneAsAnAction("dance"));
    EXPECT_EQ(phase(), "idle");
    EXPECT_TRUE(succeeds("quit"));
    EXPECT_FALSE(succeeds("status")) << "the next launch would find the one that ends";
    EXPECT_EQ(program->exitCode(), 0);
    EXPECT_EQ(program->standardError(), "");
}

TEST_F(RunningProgram, ComesForwardWithWhatIsOpenWhenItIsLaunchedAgain) {
    const auto titles = [] {
        return desktop::run({"xdotool", "search", "--onlyvisible", "--class", "app.orlune.Orlune",
                             "getwindowname", "%@"});
    };
    const auto isInFront = [] { return desktop::focusedClass() == "app.orlune.Orlune"; };
    const auto program = started();
    EXPECT_TRUE(succeeds("settings"));
    EXPECT_TRUE(waitUntil(isInFront));
    {
        const desktop::Terminal terminal;
        EXPECT_EQ(outcome({}).exitCode, 0);
        EXPECT_TRUE(waitUntil(isInFront));
        EXPECT_EQ(titles(), "Orlune Settings\n");
    }
    desktop::run({"xdotool", "key", "ctrl+w"});
    EXPECT_TRUE(waitUntil([&] { return titles().empty(); }));
    EXPECT_EQ(outcome({}).exitCode, 0);
    EXPECT_TRUE(waitUntil(isInFront));
    EXPECT_EQ(titles(), "Orlune\n");
}

TEST_F(RunningProgram, DictatesOnRequestOverTheBusAndRevealsNothingThatWasSaid) {
    const desktop::Terminal terminal;
    const auto program = started();
    EXPECT_TRUE(succeeds("toggle"));
    ASSERT_TRUE(reaches("listening")) << status();
    desktop::Speaker().speak();
    EXPECT_TRUE(succeeds("toggle"));
    ASSERT_TRUE(reaches("reviewing")) << status();
    EXPECT_THAT(status() + outcome({"status"}).output, Not(HasSubstr("weather")));
    EXPECT_TRUE(succeeds("toggle"));
    EXPECT_TRUE(
        waitUntil([&] { return terminal.typed().find("for a walk") != std::string::npos; }));
    EXPECT_THAT(terminal.typed(), StartsWith("Goal\nThe weather is nice today"));
    EXPECT_TRUE(reaches("idle"));
    EXPECT_TRUE(keyboard.down().empty());
}

TEST_F(RunningProgram, KnowsWhetherThereIsAKeyWhoeverChangesIt) {
    const auto program = started();
    const auto hasKey = [](bool isThere) {
        return waitUntil([=] {
            const auto text = status();
            return !text.empty()
                   && boost::json::parse(text).at("hasDeepgramAPIKey").as_bool() == isThere;
        });
    };
    EXPECT_TRUE(hasKey(true));
    EXPECT_EQ(outcome({"key", "remove"}).exitCode, 0);
    EXPECT_TRUE(hasKey(false));
    EXPECT_EQ(outcome({"key", "set"}, {}, key + "\n").exitCode, 0);
    EXPECT_TRUE(hasKey(true));

    // As the desktop's password manager does, which notifies nobody.
    desktop::run({"secret-tool", "clear", "service", "app.orlune.Orlune"});
    EXPECT_TRUE(succeeds("show"));
    EXPECT_TRUE(hasKey(false)) << "a window that becomes active looks again";
    EXPECT_EQ(outcome({"key", "set"}, {}, key + "\n").exitCode, 0);
    EXPECT_TRUE(hasKey(true));
}

TEST_F(RunningProgram, HearsTheShortcutUntilTheScreenIsLocked) {
    const auto program = started();
    keyboard.tap({desktop::keycode::fn});
    ASSERT_TRUE(reaches("listening")) << status();
    auto locked = QDBusMessage::createSignal(QStringLiteral("/ScreenSaver"),
                                             QStringLiteral("org.freedesktop.ScreenSaver"),
                                             QStringLiteral("ActiveChanged"));
    QDBusConnection::sessionBus().send(locked << true);
    ASSERT_TRUE(reaches("idle")) << status();
    EXPECT_TRUE(waitUntil([] { return desktop::recordings().empty(); }));
}

TEST_F(RunningProgram, LeavesNoMicrophoneOpenAndNoKeyDownWhenItIsTerminated) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        const auto program = started();
        EXPECT_TRUE(succeeds("start"));
        ASSERT_TRUE(reaches("listening")) << status();
        ASSERT_THAT(desktop::recordings(), Not(IsEmpty()));
        program->signal(signal);
        EXPECT_EQ(program->exitCode(), 0) << program->standardError();
        EXPECT_EQ(desktop::recordings(), "");
        EXPECT_TRUE(keyboard.down().empty());
        EXPECT_EQ(program->standardError(), "");
    }
}

TEST_F(RunningProgram, SaysWhyItCannotStart) {
    const auto seen = outcome({}, {{"DISPLAY", ":4000"}, {"QT_QPA_PLATFORM", ""}});
    EXPECT_EQ(seen.exitCode, 1);
    EXPECT_THAT(seen.error,
                StartsWith("orlune: Orlune needs a display, and :4000 can't be opened"));
}

/// The names of the checks that are not "ok".
std::vector<std::string> troubles(const Outcome& report) {
    std::vector<std::string> names;
    const auto document = boost::json::parse(report.output);
    for (const auto& check : document.at("checks").as_array()) {
        if (check.at("state") != "ok") {
            names.emplace_back(check.at("name").as_string());
        }
    }
    return names;
}

TEST_F(RunningProgram, PassesTheDoctorWhichNamesWhatIsMissing) {
    const auto program = started();
    const OwnProgram noise({"pacat", "--device=vmic", "/dev/urandom"});
    ASSERT_TRUE(
        waitUntil([] { return !desktop::run({"pactl", "list", "short", "sink-inputs"}).empty(); }));
    const auto well = outcome({"doctor", "--json"}, service.clientEnvironment());
    EXPECT_EQ(well.exitCode, 0);
    EXPECT_THAT(troubles(well), testing::ElementsAre("tray")) << well.output;
    EXPECT_THAT(well.output, Not(HasSubstr(key)));

    auto bare = service.clientEnvironment();
    bare["DISPLAY"] = "";
    bare["PULSE_SERVER"] = "unix:/nowhere";
    bare["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nowhere";
    bare["SSL_CERT_FILE"] = service.strangersAuthority();
    const auto ill = outcome({"doctor", "--json"}, bare);
    EXPECT_EQ(ill.exitCode, 1);
    EXPECT_THAT(troubles(ill), testing::ElementsAre("session", "seeing the shortcut", "pasting",
                                                    "clipboard", "tray", "sound server", "keyring",
                                                    "speech service", "running program"))
        << ill.output;
    EXPECT_THAT(ill.output, HasSubstr("certificate verify failed"));
}

} // namespace
} // namespace orlune
