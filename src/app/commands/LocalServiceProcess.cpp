#include "app/commands/LocalServiceProcess.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QStandardPaths>

#include <chrono>
#include <stdexcept>
#include <unistd.h>

namespace orlune {

namespace {

using namespace std::chrono_literals;

constexpr auto startLimit = 30s;
constexpr auto stopLimit = 2s;

int milliseconds(std::chrono::milliseconds duration) {
    return static_cast<int>(duration.count());
}

/// Next to this program, as when installed and in a build folder, or else on the PATH.
QString programPath() {
    const auto name = QStringLiteral("orlune-local-service");
    const QString folder = QCoreApplication::applicationDirPath();
    for (const auto& place :
         {folder + QLatin1Char('/') + name, folder + QStringLiteral("/../localservice/") + name}) {
        if (QFileInfo(place).isExecutable()) {
            return place;
        }
    }
    return QStandardPaths::findExecutable(name);
}

} // namespace

LocalServiceProcess::~LocalServiceProcess() {
    if (process_.state() == QProcess::NotRunning) {
        return;
    }
    process_.closeWriteChannel();
    if (!process_.waitForFinished(milliseconds(stopLimit))) {
        process_.kill();
        process_.waitForFinished(milliseconds(stopLimit));
    }
}

std::string LocalServiceProcess::start() {
    const QString program = programPath();
    if (program.isEmpty()) {
        throw std::runtime_error("The local speech service (orlune-local-service) isn't installed");
    }
    process_.setProcessChannelMode(QProcess::SeparateChannels);
    process_.setStandardErrorFile(QProcess::nullDevice());
    // Ctrl-C in the terminal cancels the dictation, whose last message the service still receives.
    process_.setChildProcessModifier([] { ::setsid(); });
    process_.start(program, {QStringLiteral("--port"), QStringLiteral("0"),
                             QStringLiteral("--exit-with-parent")});
    const auto deadline = std::chrono::steady_clock::now() + startLimit;
    while (!process_.canReadLine()) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left <= 0ms || !process_.waitForReadyRead(milliseconds(left))) {
            throw std::runtime_error("The local speech service didn't start: "
                                     + process_.errorString().toStdString());
        }
    }
    return process_.readLine().trimmed().toStdString();
}

} // namespace orlune
