// SPDX-License-Identifier: MIT
#include "CommandLine.h"
#include "MainWindow.h"
#include "OneCapture.h"
#include "ScreenCaptureTool.h"
#include "Translations.h"
#include "screencapture_version.h"

#include <QApplication>
#include <QDir>
#include <QStandardPaths>
#include <QTextStream>
#include <cstdlib>

namespace
{

// On an application object that needs no display, so that help and wrong usage need none either.
CommandLine readCommandLine(int argc, char** argv)
{
    const QCoreApplication app(argc, argv);
    installTranslations();
    return CommandLine(QCoreApplication::arguments());
}

int fail(const QString& message)
{
    QTextStream(stderr) << "capture-host: " << QString(message).replace('\n', ' ') << '\n';
    return OneCapture::Failed;
}

// Where Qt reaches no display it says so at length and aborts; one line and an exit status are
// enough.
void refuseWithoutDisplay(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type == QtFatalMsg)
        std::_Exit(fail(CommandLine::tr("there is no display to take a capture of")));
    if (qEnvironmentVariableIsSet("QT_DEBUG_PLUGINS"))
        QTextStream(stderr) << qFormatLogMessage(type, context, message) << '\n';
}

QString settingsDir(const CommandLine& commandLine)
{
    const QString chosen = commandLine.settingsDir();
    return chosen.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)
                            : chosen;
}

int runOnce(const CommandLine& commandLine)
{
    OneCapture capture(commandLine);
    capture.start();
    return QApplication::exec();
}

int runWindow(const CommandLine& commandLine)
{
    MainWindow window(commandLine.delayMs());
    window.show();
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    const CommandLine commandLine = readCommandLine(argc, argv);
    switch (commandLine.action()) {
    case CommandLine::Action::Help:
    case CommandLine::Action::Version:
        QTextStream(stdout) << commandLine.message();
        return 0;
    case CommandLine::Action::Wrong:
        return fail(commandLine.message());
    case CommandLine::Action::Once:
    case CommandLine::Action::Window:
        break;
    }

    // Nothing here draws with OpenGL, whose libraries take longer to load than all others.
    QCoreApplication::setAttribute(Qt::AA_ForceRasterWidgets);
    // Qt 5 tries X11 alone in some Wayland sessions.
    if (qEnvironmentVariableIsEmpty("DISPLAY") && !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
        !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "wayland");
    const QtMessageHandler handler = qInstallMessageHandler(refuseWithoutDisplay);
    QApplication app(argc, argv);
    qInstallMessageHandler(handler);
    installTranslations();
    QApplication::setApplicationName(QStringLiteral("capture-host"));
    QApplication::setApplicationVersion(QStringLiteral(SCREENCAPTURE_VERSION_STR));
    QApplication::setQuitOnLastWindowClosed(false);

    // The library expects its settings directory to be there.
    const QString settings = settingsDir(commandLine);
    if (!QDir().mkpath(settings))
        return fail(CommandLine::tr("cannot create the settings directory '%1'").arg(settings));
    ScreenCaptureTool::init(settings);
    return commandLine.action() == CommandLine::Action::Once ? runOnce(commandLine)
                                                             : runWindow(commandLine);
}
