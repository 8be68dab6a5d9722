#include "localservice/CommandLine.h"

#include <charconv>
#include <fstream>

namespace orlune::localservice {
namespace {

std::uint16_t portOf(const std::string& text) {
    std::uint16_t port = 0;
    const auto* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, port);
    if (result.ec != std::errc() || result.ptr != end) {
        throw UsageError("--port needs a number from 0 to 65535, not \"" + text + "\".");
    }
    return port;
}

/// The first line of a file, which no message may contain.
std::string readKey(const std::string& path) {
    std::ifstream file(path);
    std::string key;
    if (!std::getline(file, key) || key.empty()) {
        throw std::runtime_error("The key file " + path + " cannot be read or is empty.");
    }
    return key;
}

} // namespace

const std::string_view CommandLine::help =
    R"(Usage: orlune-local-service [OPTIONS]
A speech service on this machine: recognises US English, needs no key and no network.
Prints its address on the first line of standard output and serves until it is stopped.

  --port N                 listen on port N of 127.0.0.1 (default: any free one)
  --model DIR              use the speech model in DIR
  --script FILE            play a script instead of recognising (docs/local-service.md)
  --tls-certificate FILE   serve wss with this certificate chain (PEM) ...
  --tls-key FILE           ... and this private key (PEM)
  --require-key-file FILE  accept only the key on the first line of FILE
  --exit-with-parent       end when standard input ends
  --help                   show this text
)";

CommandLine CommandLine::parse(const std::vector<std::string>& arguments) {
    CommandLine result;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const auto& name = arguments[index];
        const auto value = [&]() -> const std::string& {
            if (index + 1 == arguments.size()) {
                throw UsageError(name + " needs a value.");
            }
            return arguments[++index];
        };
        if (name == "--help") {
            result.wantsHelp_ = true;
        } else if (name == "--exit-with-parent") {
            result.exitsWithParent_ = true;
        } else if (name == "--port") {
            result.port_ = portOf(value());
        } else if (name == "--script") {
            result.script_ = value();
        } else if (name == "--model") {
            result.model_ = value();
        } else if (name == "--tls-certificate") {
            result.certificate_ = value();
        } else if (name == "--tls-key") {
            result.privateKey_ = value();
        } else if (name == "--require-key-file") {
            result.keyFile_ = value();
        } else {
            throw UsageError("\"" + name + "\" is not known.");
        }
    }
    if (result.certificate_.empty() != result.privateKey_.empty()) {
        throw UsageError("--tls-certificate and --tls-key go together.");
    }
    return result;
}

LocalService::Options CommandLine::options() const {
    LocalService::Options options;
    options.port = port_;
    if (!script_.empty()) {
        options.script = Script::load(script_);
    }
    if (!model_.empty()) {
        options.modelDirectory = model_;
    }
    if (!certificate_.empty()) {
        options.encryption =
            LocalService::Encryption{.certificateChain = certificate_, .privateKey = privateKey_};
    }
    if (!keyFile_.empty()) {
        options.requiredKey = readKey(keyFile_);
    }
    return options;
}

} // namespace orlune::localservice
