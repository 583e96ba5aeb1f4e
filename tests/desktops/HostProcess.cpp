// SPDX-License-Identifier: MIT
#include "HostProcess.h"

#include "Waiting.h"

#include <QCoreApplication>

QMap<QString, QString> scaleSettings()
{
    QMap<QString, QString> settings;
    for (const QString& setting : qEnvironmentVariable("scale").split(' ', Qt::SkipEmptyParts))
        settings[setting.section('=', 0, 0)] = setting.section('=', 1);
    return settings;
}

HostProcess::HostProcess()
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // Its scale factor is not this program's.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("QT_ENABLE_HIGHDPI_SCALING");
    const QMap<QString, QString> settings = scaleSettings();
    for (auto it = settings.begin(); it != settings.end(); ++it)
        environment.insert(it.key(), it.value());
    m_process.setProcessEnvironment(environment);
    m_process.setWorkingDirectory(m_scratch.path());
    m_process.start(QCoreApplication::applicationDirPath() + "/../desktops/desktop-host",
                    {m_scratch.filePath("picture.bmp")});
    m_process.waitForStarted();
}

HostProcess::~HostProcess()
{
    kill();
}

void HostProcess::kill()
{
    m_process.kill();
    m_process.waitForFinished();
}

QString HostProcess::ask(const QString& question)
{
    m_process.write(question.toUtf8() + '\n');
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(kDesktopPatienceMs))
            return {};
    }
    QString line = QString::fromUtf8(m_process.readLine()).trimmed();
    if (line == "captured" || line == "cancelled" || line.startsWith("failed: ")) {
        m_end = line;
        return {};
    }
    return line;
}

HostProcess::Place HostProcess::place(const QString& name)
{
    const QStringList words = ask("where " + name).split(' ');
    if (words.size() != 5)
        return {};
    return {words[0].toUInt(),
            QRect(words[1].toInt(), words[2].toInt(), words[3].toInt(), words[4].toInt())};
}

QString HostProcess::end()
{
    eventually([this] { return !lives() || m_process.canReadLine(); });
    if (m_end.isEmpty())
        m_end = QString::fromUtf8(m_process.readLine()).trimmed();
    m_process.waitForFinished(kDesktopPatienceMs);
    return m_end;
}
