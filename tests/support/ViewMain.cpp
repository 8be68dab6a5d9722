// Runs tests of views: they are drawn in memory and need no display.

#include <QApplication>
#include <gtest/gtest.h>

int main(int argumentCount, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // It tells each time that it has no opacity, masks and stacking.
    qputenv("QT_LOGGING_RULES", "qt.qpa*=false;default.warning=false");
    QApplication application(argumentCount, arguments);
    testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
