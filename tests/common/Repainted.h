// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QPaintEvent>
#include <QRegion>
#include <QWidget>
#include <QtTest>

/// Collects what of a widget is painted.
class PaintedRegion : public QObject
{
public:
    explicit PaintedRegion(QWidget& widget) { widget.installEventFilter(this); }
    QRegion region;
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            region += static_cast<QPaintEvent*>(event)->region();
        return false;
    }
};

/// The region of `widget`, which is shown for it, that is painted because of `action`.
template <typename Action>
QRegion repaintedBy(QWidget& widget, Action action)
{
    widget.show();
    [&] { QVERIFY(QTest::qWaitForWindowExposed(&widget)); }();
    QCoreApplication::processEvents();
    PaintedRegion painted(widget);
    action();
    QCoreApplication::processEvents();
    return painted.region;
}
