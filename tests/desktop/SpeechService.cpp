#include "tests/desktop/SpeechService.h"

#include "tests/desktop/Desktop.h"

#include <csignal>
#include <stdexcept>

namespace orlune::desktop {

SpeechService::SpeechService(const std::string& key, const std::string& words, double pause) {
    using test::Certificate;
    const auto file = [this](const char* name) { return (folder_.path() / name).string(); };
    const Certificate authority("Orlune test authority");
    const Certificate certificate("DNS:localhost", authority, Certificate::Days(1));
    test::write(file("authority.pem"), authority.certificate());
    test::write(file("stranger.pem"), Certificate("Another authority").certificate());
    test::write(file("chain.pem"), certificate.certificate());
    test::write(file("key.pem"), certificate.privateKey());
    test::write(file("accepted"), key);
    std::vector<std::string> command{
        ORLUNE_LOCAL_SERVICE, "--exit-with-parent", "--tls-certificate",  file("chain.pem"),
        "--tls-key",          file("key.pem"),      "--require-key-file", file("accepted")};
    if (!words.empty()) {
        test::write(file("script"), R"({"steps": [{"waitForText": "CloseStream"}, {"wait": )"
                                        + std::to_string(pause) + R"(}, {"final": ")" + words
                                        + R"("}, {"metadata": 1}, {"close": 1000}]})");
        command.insert(command.end(), {"--script", file("script")});
    }
    program_.emplace(command);
    std::string address;
    if (!waitUntil([&] { return (address = program_->standardOutput()).ends_with('\n'); })) {
        throw std::runtime_error("the speech service did not start: " + program_->standardError());
    }
    address.pop_back();
    port_ = address.substr(address.rfind(':') + 1);
}

OwnProgram::Environment SpeechService::clientEnvironment() const {
    return {{"ORLUNE_ENDPOINT", "wss://localhost:" + port_},
            {"SSL_CERT_FILE", (folder_.path() / "authority.pem").string()}};
}

Speaker::Speaker() {
    run({"flite", "-voice", "slt", "-t", spokenSentence, "-o", file()});
}

void Speaker::speak(const OwnProgram::Environment& server) const {
    OwnProgram player({"paplay", "--device=vmic", file()}, server);
    if (player.exitCode() != 0) {
        throw std::runtime_error("nothing was spoken: " + player.standardError());
    }
}

std::string recordings() {
    return run({"pactl", "list", "short", "source-outputs"});
}

SoundServer::SoundServer() {
    const auto folder = folder_.path().string();
    // Without norewinds the first sound takes two seconds.
    program_.emplace(
        std::vector<std::string>{"pulseaudio", "-n", "--daemonize=no", "--disallow-exit",
                                 "--exit-idle-time=-1", "--use-pid-file=no", "-L",
                                 "module-native-protocol-unix socket=" + folder + "/socket", "-L",
                                 "module-null-sink sink_name=vmic norewinds=1"},
        OwnProgram::Environment{
            {"HOME", folder}, {"XDG_RUNTIME_DIR", folder}, {"XDG_CONFIG_HOME", folder}});
    const auto isUp = [this] {
        OwnProgram asking({"pactl", "set-default-source", "vmic.monitor"}, clientEnvironment());
        return asking.exitCode() == 0;
    };
    if (!waitUntil(isUp)) {
        throw std::runtime_error("the sound server did not start: " + program_->standardError());
    }
}

OwnProgram::Environment SoundServer::clientEnvironment() const {
    return {{"PULSE_SERVER", "unix:" + (folder_.path() / "socket").string()}};
}

void SoundServer::kill() const {
    program_->signal(SIGKILL);
}

} // namespace orlune::desktop
