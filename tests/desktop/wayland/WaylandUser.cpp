// What the user of a Wayland session does, from a shell: each argument is a command, or each line
// of standard input when there is none, answered with "done".
//   wayland_user "tap 29 47" "wait 300" "screenshot screen.png"
#include "tests/desktop/wayland/Screen.h"
#include "tests/desktop/wayland/UserKeyboard.h"

#include <QGuiApplication>

#include <chrono>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

using orlune::desktop::UserKeyboard;

void carryOut(UserKeyboard& keyboard, const std::string& line) {
    std::istringstream words(line);
    std::string verb;
    words >> verb;
    if (verb == "screenshot") {
        std::string file;
        words >> file;
        if (!orlune::desktop::screenshot().save(QString::fromStdString(file))) {
            throw std::runtime_error("cannot write " + file);
        }
        return;
    }
    std::vector<UserKeyboard::Key> numbers;
    for (UserKeyboard::Key number = 0; words >> number;) {
        numbers.push_back(number);
    }
    if (numbers.empty() || !words.eof()) {
        throw std::runtime_error("press, release or tap with key codes, wait with milliseconds, or "
                                 "screenshot with a file is expected: "
                                 + line);
    }
    if (verb == "tap") {
        keyboard.tap(numbers);
    } else if (verb == "wait") {
        std::this_thread::sleep_for(std::chrono::milliseconds(numbers.front()));
    } else if (verb == "press" || verb == "release") {
        for (const auto number : numbers) {
            verb == "press" ? keyboard.press(number) : keyboard.release(number);
        }
    } else {
        throw std::runtime_error("unknown: " + verb);
    }
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen"); // it has no window
    const QGuiApplication application(argc, argv);
    try {
        const auto keyboard = UserKeyboard::open();
        for (int index = 1; index < argc; ++index) {
            carryOut(*keyboard, argv[index]);
        }
        for (std::string line; argc == 1 && std::getline(std::cin, line);) {
            carryOut(*keyboard, line);
            std::cout << "done" << std::endl;
        }
    } catch (const std::runtime_error& error) {
        std::cerr << "wayland_user: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
