// SPDX-License-Identifier: MIT
#include "Input.h"

#include <QProcess>
#include <QtTest>

void run(const QString& program, const QStringList& words)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(program, words);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
}

void input(const QStringList& words)
{
    run("xdotool", words);
}

QStringList at(const QPoint& p)
{
    return {"mousemove", QString::number(p.x()), QString::number(p.y())};
}
