#include "platform/linux/storage/PlatformConfiguration.h"

#include "platform/linux/storage/SettingsFile.h"

#include <boost/json/parse.hpp>
#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace orlune {

namespace json = boost::json;

namespace {

constexpr std::size_t largestFileBytes = 64 * 1024;
/// Far longer than any name: key symbols have at most 32 characters.
constexpr std::size_t longestNameBytes = 128;

constexpr bool isLetterOrDigit(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z')
           || (character >= '0' && character <= '9');
}

bool isLoopback(const boost::urls::url_view& url) {
    switch (url.host_type()) {
    case boost::urls::host_type::ipv4:
        return url.host_ipv4_address().is_loopback();
    case boost::urls::host_type::ipv6:
        return url.host_ipv6_address().is_loopback();
    default:
        return url.host() == "localhost";
    }
}

bool isHostName(std::string_view host) {
    return !host.empty() && std::all_of(host.begin(), host.end(), [](char character) {
        return isLetterOrDigit(character) || character == '-' || character == '.';
    });
}

bool hasValidPort(const boost::urls::url_view& url) {
    const std::string_view port = url.port();
    std::uint16_t number = 0;
    const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), number);
    return error == std::errc() && end == port.data() + port.size() && number > 0;
}

/// Returns the error, or sets `value`.
std::optional<std::string> readEndpoint(std::string_view text, std::string& value) {
    const auto parsed = boost::urls::parse_uri(text);
    if (!parsed) {
        return "is not an address such as wss://host:port";
    }
    const boost::urls::url_view& url = *parsed;
    const bool isSecure = url.scheme_id() == boost::urls::scheme::wss;
    if (!isSecure && url.scheme_id() != boost::urls::scheme::ws) {
        return "must begin with wss:// or ws://";
    }
    if (url.host_type() == boost::urls::host_type::none
        || url.host_type() == boost::urls::host_type::ipvfuture
        || (url.host_type() == boost::urls::host_type::name && !isHostName(url.encoded_host()))) {
        return "does not name a host";
    }
    if (url.has_port() && !hasValidPort(url)) {
        return "has a port that is not between 1 and 65535";
    }
    if (url.has_userinfo() || url.has_query() || url.has_fragment()
        || (url.encoded_path() != "" && url.encoded_path() != "/")) {
        return "must be scheme, host and port alone";
    }
    if (!isSecure && !isLoopback(url)) {
        return "must use wss:// unless it is this machine";
    }
    value = (isSecure ? "wss://" : "ws://") + std::string(url.encoded_host_and_port());
    return std::nullopt;
}

std::optional<std::string> readKey(std::string_view text, std::string& value) {
    const bool isName = std::all_of(text.begin(), text.end(), [](char character) {
        return isLetterOrDigit(character) || character == '_';
    });
    if (text.empty() || text.size() > longestNameBytes || !isName) {
        return "is not the name of a key symbol such as Control_R";
    }
    value = text;
    return std::nullopt;
}

std::optional<std::string> addTerminal(std::string_view text, std::vector<std::string>& value) {
    const bool isPrintable = std::none_of(text.begin(), text.end(), [](char character) {
        return static_cast<unsigned char>(character) < 0x20 || character == 0x7f;
    });
    if (text.empty() || text.size() > longestNameBytes || !isPrintable) {
        return "holds something that is not the class of a window";
    }
    value.emplace_back(text);
    return std::nullopt;
}

std::optional<std::string> readSwitch(std::string_view text, std::optional<bool>& value) {
    if (text != "0" && text != "1") {
        return "is neither 1 nor 0";
    }
    value = text == "1";
    return std::nullopt;
}

std::optional<std::string> readPasteKeys(std::string_view text, bool& isControlV) {
    if (text != "shift-insert" && text != "control-v") {
        return "is neither shift-insert nor control-v";
    }
    isControlV = text == "control-v";
    return std::nullopt;
}

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    const auto last = text.find_last_not_of(" \t");
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, last - first + 1);
}

/// Collects the entries of one parse.
class Reader {
  public:
    explicit Reader(PlatformConfiguration& configuration) : configuration_(configuration) {}

    void readFile(const json::object& members) {
        const std::string file = PlatformConfiguration::fileName;
        for (const auto& [key, member] : members) {
            const auto name = file + ": " + std::string(key);
            if (key == "terminals" && member.is_array()) {
                for (const auto& terminal : member.get_array()) {
                    report(name, terminal.is_string()
                                     ? addTerminal(terminal.get_string(), configuration_.terminals)
                                     : "holds something that is not text");
                }
            } else if (key == "terminals") {
                report(name, "is not a list");
            } else if (key == "reduceMotion" && member.is_bool()) {
                configuration_.reduceMotion = member.get_bool();
            } else if (key == "reduceMotion") {
                report(name, "is neither true nor false");
            } else if (key != "endpoint" && key != "fnKey" && key != "pasteKeys") {
                report(name, "is not known");
            } else if (!member.is_string()) {
                report(name, "is not text");
            } else if (key == "endpoint") {
                report(name, readEndpoint(member.get_string(), configuration_.endpoint));
            } else if (key == "pasteKeys") {
                report(name, readPasteKeys(member.get_string(), configuration_.pastesWithControlV));
            } else {
                report(name, readKey(member.get_string(), configuration_.fnKey));
            }
        }
    }

    void readEnvironment(const Environment& environment) {
        if (const auto* text = variable(environment, "ORLUNE_ENDPOINT")) {
            report("ORLUNE_ENDPOINT", readEndpoint(*text, configuration_.endpoint));
        }
        if (const auto* text = variable(environment, "ORLUNE_FN_KEY")) {
            report("ORLUNE_FN_KEY", readKey(*text, configuration_.fnKey));
        }
        if (const auto* text = variable(environment, "ORLUNE_REDUCE_MOTION")) {
            report("ORLUNE_REDUCE_MOTION", readSwitch(*text, configuration_.reduceMotion));
        }
        if (const auto* text = variable(environment, "ORLUNE_PASTE_KEYS")) {
            report("ORLUNE_PASTE_KEYS", readPasteKeys(*text, configuration_.pastesWithControlV));
        }
        if (const auto* text = variable(environment, "ORLUNE_TERMINALS")) {
            configuration_.terminals.clear();
            std::string_view rest = *text;
            while (!rest.empty()) {
                const auto comma = std::min(rest.find(','), rest.size());
                report("ORLUNE_TERMINALS",
                       addTerminal(trimmed(rest.substr(0, comma)), configuration_.terminals));
                rest.remove_prefix(std::min(comma + 1, rest.size()));
            }
        }
    }

    void report(const std::string& name, const std::optional<std::string>& problem) {
        if (problem) {
            configuration_.problems.push_back(name + " " + *problem + "; it is ignored");
        }
    }

  private:
    /// An empty variable counts as unset.
    static const std::string* variable(const Environment& environment, std::string_view name) {
        const auto entry = environment.find(name);
        return entry == environment.end() || entry->second.empty() ? nullptr : &entry->second;
    }

    PlatformConfiguration& configuration_;
};

} // namespace

PlatformConfiguration PlatformConfiguration::parse(std::optional<std::string_view> text,
                                                   const Environment& environment) {
    PlatformConfiguration configuration;
    Reader reader(configuration);
    if (text) {
        boost::system::error_code error;
        const auto document = json::parse(*text, error);
        if (error) {
            reader.report(fileName, "is not JSON (" + error.message() + ")");
        } else if (!document.is_object()) {
            reader.report(fileName, "does not hold an object");
        } else {
            reader.readFile(document.get_object());
        }
    }
    reader.readEnvironment(environment);
    return configuration;
}

PlatformConfiguration PlatformConfiguration::load(const std::filesystem::path& folder,
                                                  const Environment& environment) {
    using Kind = SettingsFile::Contents::Kind;
    const SettingsFile file(folder / fileName);
    const auto contents = file.read(largestFileBytes);
    if (contents.kind == Kind::text) {
        return parse(contents.text, environment);
    }
    auto configuration = parse(std::nullopt, environment);
    if (contents.kind != Kind::missing) {
        const auto reason = contents.kind == Kind::tooLarge ? "it is too large" : contents.error;
        configuration.problems.push_back("Cannot read " + file.path().string() + ": " + reason);
    }
    return configuration;
}

} // namespace orlune
