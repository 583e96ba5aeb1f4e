// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>
#include <QtTest>

/// Real input through the X server. Wait for the effect of a click before the next one: while a
/// window manager holds the pointer, the server loses a release that the next press overtakes.
inline void xdotool(const QStringList& words)
{
    QProcess process;
    process.start("xdotool", words);
    QVERIFY(process.waitForStarted());
    QTRY_COMPARE_WITH_TIMEOUT(process.state(), QProcess::NotRunning, 20000);
    QCOMPARE(process.exitCode(), 0);
}

inline QStringList moveTo(const QPoint& p)
{
    return {"mousemove", QString::number(p.x()), QString::number(p.y())};
}
