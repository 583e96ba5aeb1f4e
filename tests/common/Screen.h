// SPDX-License-Identifier: MIT
#pragma once

#include "BehaviourTest.h"
#include "Pictures.h"
#include "QtVersions.h"

#include <QApplication>
#include <QCursor>
#include <QMouseEvent>
#include <QProcess>
#include <QScreen>

// For tests on a real X server: what is on the screen, and input through the server.

inline QRect screenRect()
{
    return {QPoint(), QGuiApplication::primaryScreen()->size()};
}

/// What is on the screen now.
inline QImage screenshot()
{
    const QRect all = screenRect();
    return QGuiApplication::primaryScreen()
        ->grabWindow(0, 0, 0, all.width(), all.height())
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

/// A desktop with a known picture on it, outside the window manager's reach.
class Desktop : public QWidget
{
public:
    explicit Desktop(quint32 seed)
        : QWidget(nullptr, Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint)
        , m_picture(noise(screenRect().size() * devicePixelRatio(), seed))
    {
        m_picture.setDevicePixelRatio(devicePixelRatioF());
        setAttribute(Qt::WA_OpaquePaintEvent);
        setGeometry(screenRect());
        show();
        lower();
    }
    const QImage& picture() const { return m_picture; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override { QPainter(this).drawImage(0, 0, m_picture); }

private:
    QImage m_picture;
};

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
            m_last = qtversions::posOnDesktop(*static_cast<QMouseEvent*>(event)).toPoint();
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

/// Drags with the left button and waits until the application has seen the release.
inline void dragPointer(const QVector<QPoint>& path)
{
    movePointer(path.first());
    xdotool({"mousedown", "1"});
    for (int i = 1; i < path.size(); ++i)
        movePointer(path[i]);
    xdotool({"mouseup", "1"});
    QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::MouseButtons());
}

/// Clicks so fast that two clicks are a double-click.
inline void clickPointer(const QPoint& p, int times = 1)
{
    xdotool(moveTo(p) << "click"
                      << "--repeat" << QString::number(times) << "--delay"
                      << "20"
                      << "1");
}
