// Runs tests of views, which are drawn in memory and need no display. A warning of Qt fails the
// test in which it appears.

#include <QApplication>
#include <gtest/gtest.h>

namespace {

void failOnWarning(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
    // Drawing in memory supports no window opacity, masks or stacking.
    if (type != QtDebugMsg && type != QtInfoMsg
        && !message.startsWith(QLatin1String("This plugin does not support"))) {
        ADD_FAILURE() << message.toStdString();
    }
}

} // namespace

int main(int argumentCount, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "qt.qpa*=false");
    QApplication application(argumentCount, arguments);
    testing::InitGoogleTest(&argumentCount, arguments);
    qInstallMessageHandler(failOnWarning);
    return RUN_ALL_TESTS();
}
