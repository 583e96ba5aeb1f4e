// SPDX-License-Identifier: MIT
#include "CommandLine.h"
#include "screencapture_version.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <cmath>

namespace
{

constexpr double kMsPerSecond = 1000;
constexpr double kLongestDelaySeconds = 24 * 60 * 60;

bool isPictureSuffix(const QString& suffix)
{
    return QStringList{"png", "jpg", "jpeg", "bmp"}.contains(suffix.toLower());
}

bool isDelay(double seconds)
{
    return std::isfinite(seconds) && seconds >= 0 && seconds <= kLongestDelaySeconds;
}

} // namespace

CommandLine::CommandLine(const QStringList& arguments)
{
    parse(arguments);
}

void CommandLine::parse(const QStringList& arguments)
{
    const QCommandLineOption once("once", tr("Take one capture at once and exit: 0 with a picture, "
                                             "1 when cancelled, 2 for an error."));
    const QCommandLineOption output(
        "output", tr("With --once: write the picture to FILE (.png, .jpg, .jpeg or .bmp)."),
        "FILE");
    const QCommandLineOption clipboard(
        "clipboard", tr("With --once: put the picture on the clipboard and stay until another "
                        "program takes the clipboard over."));
    const QCommandLineOption delay("delay", tr("Wait that long before the capture."), "SECONDS",
                                   "0");
    const QCommandLineOption settings(
        "settings", tr("Keep the settings in DIR, which is created if missing."), "DIR");
    const QCommandLineOption help({"h", "help"}, tr("Show this help."));
    const QCommandLineOption version({"v", "version"}, tr("Show the version."));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        tr("Takes a screenshot of a region of the desktop. Without --once, opens a window."));
    parser.addOptions({once, output, clipboard, delay, settings, help, version});

    if (!parser.parse(arguments))
        return wrong(parser.errorText());
    if (parser.isSet(help)) {
        m_action = Action::Help;
        m_message = parser.helpText();
        return;
    }
    if (parser.isSet(version)) {
        m_action = Action::Version;
        m_message = QStringLiteral("capture-host " SCREENCAPTURE_VERSION_STR "\n");
        return;
    }
    if (!parser.positionalArguments().isEmpty())
        return wrong(tr("unexpected argument '%1'").arg(parser.positionalArguments().constFirst()));

    m_action = parser.isSet(once) ? Action::Once : Action::Window;
    m_output = parser.value(output);
    m_toClipboard = parser.isSet(clipboard);
    m_settingsDir = parser.value(settings);

    if (m_action == Action::Window && (parser.isSet(output) || m_toClipboard))
        return wrong(tr("--output and --clipboard need --once"));
    if (parser.isSet(output) && !isPictureSuffix(QFileInfo(m_output).suffix()))
        return wrong(
            tr("--output '%1': the name must end with .png, .jpg, .jpeg or .bmp").arg(m_output));
    if (parser.isSet(settings) && m_settingsDir.isEmpty())
        return wrong(tr("--settings needs a directory"));

    bool isNumber = false;
    const double seconds = parser.value(delay).toDouble(&isNumber);
    if (!isNumber || !isDelay(seconds))
        return wrong(tr("--delay '%1': not a number of seconds").arg(parser.value(delay)));
    m_delayMs = static_cast<int>(std::lround(seconds * kMsPerSecond));
}

void CommandLine::wrong(const QString& message)
{
    m_action = Action::Wrong;
    m_message = message;
}
