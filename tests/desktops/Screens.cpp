// SPDX-License-Identifier: MIT
#include "Screens.h"

#include <QGuiApplication>
#include <QScreen>

const QList<QRect>& screens()
{
    static const QList<QRect> all = [] {
        QList<QRect> result;
        for (const QScreen* screen : QGuiApplication::screens())
            result << screen->geometry();
        return result;
    }();
    return all;
}

QRect screenOf(const QPoint& p)
{
    const auto distance = [&p](const QRect& screen) {
        return (p - QPoint(qBound(screen.left(), p.x(), screen.right()),
                           qBound(screen.top(), p.y(), screen.bottom())))
            .manhattanLength();
    };
    QRect result = screens().first();
    for (const QRect& other : screens()) {
        if (distance(other) < distance(result))
            result = other;
    }
    return result;
}

QStringList arrangement()
{
    QStringList words;
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect r = screen->geometry();
        words << "--output" << screen->name() << "--mode"
              << QStringLiteral("own-%1x%2").arg(r.width()).arg(r.height()) << "--pos"
              << QStringLiteral("%1x%2").arg(r.x()).arg(r.y());
    }
    return words << "--output" << QGuiApplication::primaryScreen()->name() << "--primary"
                 << "--output" << kSpareOutput << "--off";
}

QRect between(const QPoint& a, const QPoint& b)
{
    return {QPoint(qMin(a.x(), b.x()), qMin(a.y(), b.y())),
            QPoint(qMax(a.x(), b.x()), qMax(a.y(), b.y()))};
}

QVector<Drag> dragsAcross()
{
    QVector<Drag> drags;
    for (const QRect& a : screens()) {
        for (const QRect& b : screens()) {
            if (a == b)
                continue;
            if (a.x() <= b.x())
                drags << Drag{a.center(), b.center()};
            if (a.right() > b.left() && a.top() < b.bottom())
                drags << Drag{a.topRight(), b.bottomLeft()};
        }
    }
    return drags;
}

QVector<Drag> dragsEverywhere()
{
    QVector<Drag> drags = dragsAcross();
    for (const QRect& r : screens()) {
        for (const int x : {r.left(), r.center().x(), r.right() - 100}) {
            for (const int y : {r.top(), r.center().y(), r.bottom() - 50})
                drags << Drag{QPoint(x, y), QPoint(x + 100, y + 50)};
        }
        drags << Drag{r.topLeft(), r.bottomRight()};
    }
    return drags;
}
