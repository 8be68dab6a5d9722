// Runs desktop tests with Qt's loop. They press keys in the window that has the focus, so outside a
// boxed session the program restarts itself in one. Arguments that are not gtest's are options of
// `scripts/session`.
#include <QGuiApplication>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

void runInSession(std::vector<std::string> gtestArguments, int optionCount, char** options) {
    std::vector<std::string> words{ORLUNE_SESSION_SCRIPT};
    words.insert(words.end(), options, options + optionCount);
    words.emplace_back("--");
    words.insert(words.end(), gtestArguments.begin(), gtestArguments.end());
    std::vector<char*> pointers;
    for (auto& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    ::execv(pointers.front(), pointers.data());
    std::perror(pointers.front());
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> gtestArguments{argv[0]};
    for (int index = 1; index < argc; ++index) {
        if (std::string_view(argv[index]).starts_with("--gtest_")) {
            gtestArguments.emplace_back(argv[index]);
        }
    }
    testing::InitGoogleTest(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) {
        return RUN_ALL_TESTS();
    }
    if (!std::getenv("ORLUNE_SESSION")) {
        runInSession(std::move(gtestArguments), argc - 1, argv + 1);
        return EXIT_FAILURE;
    }
    // The test itself is an X client in every session, and no program that it starts is made one.
    const auto chosen = qgetenv("QT_QPA_PLATFORM");
    qputenv("QT_QPA_PLATFORM", "xcb");
    const QGuiApplication application(argc, argv);
    chosen.isEmpty() ? qunsetenv("QT_QPA_PLATFORM") : qputenv("QT_QPA_PLATFORM", chosen);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
