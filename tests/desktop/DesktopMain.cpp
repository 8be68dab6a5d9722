// Runs desktop tests with Qt's loop at hand, inside `scripts/session`.
#include <QGuiApplication>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    if (!std::getenv("ORLUNE_SESSION")) {
        // They press keys into whatever window has the keyboard.
        std::fputs("desktop tests run inside scripts/session alone\n", stderr);
        return 1;
    }
    testing::InitGoogleTest(&argc, argv);
    QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
