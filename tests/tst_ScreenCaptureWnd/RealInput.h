// SPDX-License-Identifier: MIT
#pragma once

#include "BehaviourTest.h"

#include <QApplication>
#include <QCursor>
#include <QMouseEvent>
#include <QProcess>

/// Real input through the X server. Wait for the effect of a click before the next one: while a
/// window manager holds the pointer, the server loses a release that the next press overtakes.
inline void xdotool(const QStringList& words)
{
    QProcess process;
    process.start("xdotool", words);
    QVERIFY(process.waitForStarted());
    QTRY_COMPARE(process.state(), QProcess::NotRunning);
    QCOMPARE(process.exitCode(), 0);
}

inline QStringList moveTo(const QPoint& p)
{
    return {"mousemove", QString::number(p.x()), QString::number(p.y())};
}

/// Knows where the pointer was at the last mouse event that reached the application.
class PointerWatch : public QObject
{
public:
    explicit PointerWatch(QObject* parent)
        : QObject(parent)
        , m_last(QCursor::pos())
    {
        QCoreApplication::instance()->installEventFilter(this);
    }
    QPoint last() const { return m_last; }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched->isWindowType() && event->type() == QEvent::MouseMove)
            m_last = static_cast<QMouseEvent*>(event)->globalPos();
        return false;
    }

private:
    QPoint m_last;
};

/// Moves the pointer and waits until the application has seen it there, because Qt leaves out moves
/// that are followed by another one.
inline void movePointer(const QPoint& p)
{
    static auto* watch = new PointerWatch(QCoreApplication::instance());
    xdotool(moveTo(p));
    QTRY_COMPARE(watch->last(), p);
}
