#include "app/commands/LoginItem.h"

#include "platform/Platform.h"

#include <cerrno>
#include <fstream>
#include <string>
#include <system_error>

namespace orlune {

namespace {

namespace fs = std::filesystem;

/// Escapes a text for use as the value of a key.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char letter : text) {
        result += letter == '\\' ? "\\\\" : std::string(1, letter);
    }
    return result;
}

/// Quotes an argument for a desktop file's Exec key.
std::string quoted(const std::string& argument) {
    std::string result = "\"";
    for (const char letter : argument) {
        switch (letter) {
        case '%':
            result += "%%";
            break;
        case '\\': // once for the argument, once for the file
            result += "\\\\\\\\";
            break;
        case '"':
        case '`':
        case '$':
            result += "\\\\";
            [[fallthrough]];
        default:
            result += letter;
        }
    }
    return result + '"';
}

} // namespace

LoginItem::LoginItem(const fs::path& configurationHome)
    : file_((configurationHome / "autostart" / bundleIdentifier) += ".desktop") {}

bool LoginItem::isEnabled() const {
    std::ifstream stream(file_);
    if (!stream) {
        return false;
    }
    for (std::string line; std::getline(stream, line);) {
        if (line == "Hidden=true" || line == "X-GNOME-Autostart-enabled=false") {
            return false;
        }
    }
    return true;
}

void LoginItem::enable(const fs::path& program) const {
    fs::create_directories(file_.parent_path());
    const auto temporary = fs::path(file_).concat(".new");
    std::ofstream stream(temporary);
    stream << "[Desktop Entry]\n"
              "Version=1.4\n"
              "Type=Application\n"
              "Name=Orlune\n"
              "Comment=Dictation, ready at the shortcut from login on\n"
              "Icon="
           << bundleIdentifier << "\nTryExec=" << escaped(program.string())
           << "\nExec=" << quoted(program.string())
           << " --background\n"
              "StartupNotify=false\n"
              "X-GNOME-Autostart-enabled=true\n";
    stream.close();
    if (!stream) {
        throw std::system_error(errno, std::generic_category(), temporary.string());
    }
    fs::rename(temporary, file_);
}

void LoginItem::disable() const {
    fs::remove(file_);
}

} // namespace orlune
