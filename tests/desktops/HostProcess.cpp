// SPDX-License-Identifier: MIT
#include "HostProcess.h"

#include "Waiting.h"

#include <QCoreApplication>

HostProcess::HostProcess()
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // Its scale factor is not this program's.
    const QString variable = qEnvironmentVariable("scale_name");
    if (!variable.isEmpty()) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(variable, qEnvironmentVariable("scale_value"));
        m_process.setProcessEnvironment(environment);
    }
    m_process.start(QCoreApplication::applicationDirPath() + "/desktop-host",
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
    if (line == "captured" || line == "cancelled") {
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
