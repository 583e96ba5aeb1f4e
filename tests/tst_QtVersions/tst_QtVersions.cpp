// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "QtVersions.h"

#include <QtTest>

/// What is to be the same whichever Qt the library is built on.
class tst_QtVersions : public BehaviourTest
{
    Q_OBJECT

private slots:
    void invertedRectangleKeepsItsCorners_data();
    void invertedRectangleKeepsItsCorners();
    void positionsAreThoseOfTheEvent();
};

void tst_QtVersions::invertedRectangleKeepsItsCorners_data()
{
    QTest::addColumn<QPoint>("second");
    QTest::addColumn<QRect>("normalized");
    // From (10, 20).
    QTest::newRow("not inverted") << QPoint(14, 23) << QRect(10, 20, 5, 4);
    QTest::newRow("one pixel") << QPoint(10, 20) << QRect(10, 20, 1, 1);
    QTest::newRow("no width") << QPoint(9, 23) << QRect(10, 20, 0, 4);
    QTest::newRow("no height") << QPoint(14, 19) << QRect(10, 20, 5, 0);
    QTest::newRow("two left") << QPoint(8, 23) << QRect(8, 20, 3, 4);
    QTest::newRow("two up") << QPoint(14, 18) << QRect(10, 18, 5, 3);
    QTest::newRow("far left and up") << QPoint(-90, -80) << QRect(-90, -80, 101, 101);
}

void tst_QtVersions::invertedRectangleKeepsItsCorners()
{
    QFETCH(QPoint, second);
    QFETCH(QRect, normalized);
    QCOMPARE(qtversions::normalized(QRect(QPoint(10, 20), second)), normalized);
}

void tst_QtVersions::positionsAreThoseOfTheEvent()
{
    const QPointF inWidget(1.25, 2.5);
    const QPointF inWindow(11.25, 22.5);
    const QPointF onDesktop(111.25, 222.5);
    const QMouseEvent event(QEvent::MouseMove, inWidget, inWindow, onDesktop, Qt::NoButton,
                            Qt::NoButton, Qt::NoModifier);
    QCOMPARE(qtversions::posInWidget(event), inWidget);
    QCOMPARE(qtversions::posInWindow(event), inWindow);
    QCOMPARE(qtversions::posOnDesktop(event), onDesktop);
}

QTEST_MAIN(tst_QtVersions)
#include "tst_QtVersions.moc"
