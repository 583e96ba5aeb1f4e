// SPDX-License-Identifier: MIT
#include "AssertionProbe.h"
#include "BehaviourTest.h"
#include "Host.h"
#include "ReferenceRect.h"
#include "ResizableRect.h"

#include <QRandomGenerator>

/// What the rectangle does with its host's mouse.
class tst_ResizableRect_mouse : public BehaviourTest
{
    Q_OBJECT

private slots:
    void pressRecordsTheSection_data();
    void pressRecordsTheSection();
    void pressSectionStaysUntilTheNextPress();
    void cursorFollowsTheSection_data();
    void cursorFollowsTheSection();
    void cursorStaysWhileTheLeftButtonIsHeld();
    void draggingMovesOrResizes_data();
    void draggingMovesOrResizes();
    void draggingPastTheOppositeEdgeInvertsUntilRelease();
    void releaseFlipsTheArrow_data();
    void releaseFlipsTheArrow();
    void releaseIsSilent();
    void releaseIsAcceptedOnlyOnTheRectangle();
    void tooLargeRectangleIsCutByTheFirstMove();
    void pressOutsideNeverDrags();
    void hiddenOrDisabledIgnoresTheMouse_data();
    void hiddenOrDisabledIgnoresTheMouse();
    void eventsAreNeverConsumed();
    void otherObjectsAreNotWatched();
    void filterAssertsAnEvent();
    void randomWalkMatchesTheReference_data();
    void randomWalkMatchesTheReference();
    void disablingRestoresTheCursor();
    void theHostsCursorIsRememberedAtTheStart();
    void bothButtonsDrag();
    void doubleClickIsNotItsConcern();
    void mirroredArrowReadsEveryRow_data();
    void mirroredArrowReadsEveryRow();
};

void tst_ResizableRect_mouse::pressRecordsTheSection_data()
{
    QTest::addColumn<QPoint>("p");
    QTest::addColumn<int>("section");
    for (int id = 0; id < 8; ++id)
        QTest::newRow(qPrintable(QString("handle %1").arg(id))) << anchorOf(id) << id;
    QTest::newRow("inside") << QPoint(60, 35) << -3;
    QTest::newRow("border") << QPoint(30, 8) << -1;
    QTest::newRow("outside") << QPoint(200, 200) << -2;
}

void tst_ResizableRect_mouse::pressRecordsTheSection()
{
    QFETCH(QPoint, p);
    QFETCH(int, section);
    Host host;
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    host.press(QPoint(60, 35));
    host.press(p);
    QCOMPARE(rect.mousePressSection(), section);
    host.press(QPoint(60, 35), Qt::RightButton);
    QCOMPARE(rect.mousePressSection(), section);
}

void tst_ResizableRect_mouse::pressSectionStaysUntilTheNextPress()
{
    Host host;
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    host.press(anchorOf(7));
    host.release(anchorOf(7));
    QCOMPARE(rect.mousePressSection(), 7);
    host.hover(QPoint(200, 200));
    QCOMPARE(rect.mousePressSection(), 7);
}

void tst_ResizableRect_mouse::cursorFollowsTheSection_data()
{
    QTest::addColumn<QPoint>("p");
    QTest::addColumn<int>("shape");
    const Qt::CursorShape shapes[] = {Qt::SizeHorCursor,   Qt::SizeHorCursor,   Qt::SizeVerCursor,
                                      Qt::SizeVerCursor,   Qt::SizeFDiagCursor, Qt::SizeBDiagCursor,
                                      Qt::SizeBDiagCursor, Qt::SizeFDiagCursor};
    for (int id = 0; id < 8; ++id)
        QTest::newRow(qPrintable(QString("handle %1").arg(id))) << anchorOf(id) << int(shapes[id]);
    QTest::newRow("inside") << QPoint(60, 35) << int(Qt::SizeAllCursor);
    QTest::newRow("2 px outside the top edge") << QPoint(30, 8) << int(Qt::SizeAllCursor);
    QTest::newRow("10 px outside") << QPoint(30, 0) << int(Qt::IBeamCursor);
}

void tst_ResizableRect_mouse::cursorFollowsTheSection()
{
    QFETCH(QPoint, p);
    QFETCH(int, shape);
    Host host;
    host.setCursor(Qt::IBeamCursor);
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    host.hover(QPoint(60, 35));
    host.hover(p);
    QCOMPARE(int(host.cursor().shape()), shape);
    host.hover(QPoint(60, 35));
    host.hover(p, Qt::RightButton);
    QCOMPARE(int(host.cursor().shape()), shape);
}

void tst_ResizableRect_mouse::cursorStaysWhileTheLeftButtonIsHeld()
{
    Host host;
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    host.hover(anchorOf(0));
    host.press(anchorOf(0));
    host.drag(QPoint(60, 35));
    QCOMPARE(host.cursor().shape(), Qt::SizeHorCursor);
}

void tst_ResizableRect_mouse::draggingMovesOrResizes_data()
{
    QTest::addColumn<QPoint>("press");
    QTest::addColumn<QPoint>("to");
    QTest::addColumn<QRect>("expected");
    const auto edges = [](int l, int t, int r, int b) { return QRect(QPoint(l, t), QPoint(r, b)); };
    QTest::newRow("inside") << QPoint(60, 35) << QPoint(70, 55) << edges(20, 30, 119, 79);
    QTest::newRow("border") << QPoint(30, 8) << QPoint(35, 11) << edges(15, 13, 114, 62);
    QTest::newRow("moved out at the left")
        << QPoint(60, 35) << QPoint(-5, -9) << edges(0, 0, 99, 49);
    QTest::newRow("moved out at the right")
        << QPoint(60, 35) << QPoint(900, 900) << edges(301, 251, 400, 300);
    QTest::newRow("left") << anchorOf(0) << QPoint(33, 44) << edges(33, 10, 109, 59);
    QTest::newRow("right") << anchorOf(1) << QPoint(133, 44) << edges(10, 10, 133, 59);
    QTest::newRow("right beyond the widget")
        << anchorOf(1) << QPoint(500, 44) << edges(10, 10, 400, 59);
    QTest::newRow("top") << anchorOf(2) << QPoint(33, 44) << edges(10, 44, 109, 59);
    QTest::newRow("bottom") << anchorOf(3) << QPoint(33, 44) << edges(10, 10, 109, 44);
    QTest::newRow("top-left") << anchorOf(4) << QPoint(33, 44) << edges(33, 44, 109, 59);
    QTest::newRow("top-right") << anchorOf(5) << QPoint(33, 44) << edges(10, 44, 33, 59);
    QTest::newRow("bottom-left") << anchorOf(6) << QPoint(33, 44) << edges(33, 10, 109, 44);
    QTest::newRow("bottom-right") << anchorOf(7) << QPoint(33, 44) << edges(10, 10, 33, 44);
}

void tst_ResizableRect_mouse::draggingMovesOrResizes()
{
    QFETCH(QPoint, press);
    QFETCH(QPoint, to);
    QFETCH(QRect, expected);
    Host host;
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    QSignalSpy spy(&rect, SIGNAL(rectChanged(QRect, bool)));
    host.press(press);
    host.drag(to);
    QCOMPARE(rect.rect(), expected);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toRect(), expected);
    host.drag(to);
    QCOMPARE(spy.count(), 2);
}

void tst_ResizableRect_mouse::draggingPastTheOppositeEdgeInvertsUntilRelease()
{
    Host host;
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    QSignalSpy spy(&rect, SIGNAL(rectChanged(QRect, bool)));
    host.press(anchorOf(1));
    host.drag(QPoint(0, 34));
    const QRect raw(QPoint(10, 10), QPoint(0, 59));
    QCOMPARE(raw.width(), -9);
    QCOMPARE(rect.rect(), raw.normalized());
    QCOMPARE(spy.last().at(0).toRect(), raw.normalized());
    QCOMPARE(rect.wherePoint(QPoint(-2, 34)), 1);
    QCOMPARE(rect.wherePoint(QPoint(12, 34)), 0);
    host.release(QPoint(0, 34));
    QCOMPARE(rect.rect(), raw.normalized());
    QCOMPARE(rect.wherePoint(QPoint(-3, 34)), 0);
    QCOMPARE(rect.wherePoint(QPoint(13, 34)), 1);
}

void tst_ResizableRect_mouse::releaseFlipsTheArrow_data()
{
    QTest::addColumn<QPoint>("to");
    QTest::addColumn<int>("head");
    QTest::addColumn<int>("tail");
    QTest::newRow("not flipped") << QPoint(200, 150) << 5 << 6;
    QTest::newRow("width negative") << QPoint(20, 150) << 4 << 7;
    QTest::newRow("height negative") << QPoint(200, 30) << 7 << 4;
    QTest::newRow("both negative") << QPoint(20, 30) << 6 << 5;
}

void tst_ResizableRect_mouse::releaseFlipsTheArrow()
{
    QFETCH(QPoint, to);
    QFETCH(int, head);
    QFETCH(int, tail);
    Host host;
    ResizableRect rect(&host, QRect(100, 100, 100, 50));
    rect.initArrow();
    rect.setVisible(true);
    host.press(QPoint(199, 149));
    host.drag(to);
    const QRect raw(QPoint(100, 100), to);
    QCOMPARE(rect.arrowHead(), raw.topRight());
    QCOMPARE(rect.arrowTail(), raw.bottomLeft());
    host.release(to);
    QCOMPARE(rect.arrowHead(), rect.getArrowRectPoint(head, rect.rect()));
    QCOMPARE(rect.arrowTail(), rect.getArrowRectPoint(tail, rect.rect()));
}

void tst_ResizableRect_mouse::releaseIsSilent()
{
    Host host;
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    host.press(anchorOf(1));
    host.drag(QPoint(2, 34));
    QSignalSpy spy(&rect, SIGNAL(rectChanged(QRect, bool)));
    const QRegion painted = host.repaintedBy([&] { host.release(QPoint(2, 34)); });
    QCOMPARE(spy.count(), 0);
    QVERIFY(painted.isEmpty());
}

void tst_ResizableRect_mouse::releaseIsAcceptedOnlyOnTheRectangle()
{
    Host host;
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    const auto filtered = [&](Qt::MouseButton button) {
        QMouseEvent event(QEvent::MouseButtonRelease, QPoint(60, 35), button, Qt::NoButton,
                          Qt::NoModifier);
        event.ignore();
        rect.eventFilter(&host, &event);
        return event.isAccepted();
    };
    host.press(QPoint(200, 200));
    QVERIFY(!filtered(Qt::LeftButton));
    host.press(QPoint(60, 35));
    QVERIFY(!filtered(Qt::RightButton));
    QVERIFY(filtered(Qt::LeftButton));
}

void tst_ResizableRect_mouse::tooLargeRectangleIsCutByTheFirstMove()
{
    Host host;
    ResizableRect rect(&host, QRect(QPoint(50, 50), QPoint(649, 99)));
    rect.setVisible(true);
    host.press(QPoint(200, 75));
    host.drag(QPoint(201, 75));
    QCOMPARE(rect.rect(), QRect(QPoint(0, 50), QPoint(400, 99)));
}

void tst_ResizableRect_mouse::pressOutsideNeverDrags()
{
    Host host;
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    host.press(QPoint(200, 200));
    host.drag(QPoint(60, 35));
    host.release(QPoint(60, 35));
    QCOMPARE(rect.rect(), kRect);
}

void tst_ResizableRect_mouse::hiddenOrDisabledIgnoresTheMouse_data()
{
    QTest::addColumn<bool>("visible");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("hidden") << false << true;
    QTest::newRow("disabled") << true << false;
}

void tst_ResizableRect_mouse::hiddenOrDisabledIgnoresTheMouse()
{
    QFETCH(bool, visible);
    QFETCH(bool, enabled);
    Host host;
    host.setCursor(Qt::IBeamCursor);
    ResizableRect rect(&host, kRect);
    rect.setVisible(visible);
    rect.setEnabled(enabled);
    host.hover(QPoint(60, 35));
    QCOMPARE(host.cursor().shape(), Qt::IBeamCursor);
    host.press(QPoint(60, 35));
    host.drag(QPoint(80, 50));
    QCOMPARE(rect.mousePressSection(), -2);
    QCOMPARE(rect.rect(), kRect);
}

void tst_ResizableRect_mouse::eventsAreNeverConsumed()
{
    Host host;
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    host.press(QPoint(60, 35));
    host.drag(QPoint(80, 50));
    host.release(QPoint(80, 50));
    host.hover(QPoint(80, 50));
    QCOMPARE(host.mouseEvents, 4);
}

void tst_ResizableRect_mouse::otherObjectsAreNotWatched()
{
    Host host;
    Host other;
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    other.installEventFilter(&rect);
    other.press(QPoint(60, 35));
    QCOMPARE(rect.mousePressSection(), -2);
}

void tst_ResizableRect_mouse::filterAssertsAnEvent()
{
    SKIP_WITHOUT_ASSERTIONS();
    Host host;
    ResizableRect rect(&host, kRect);
    QVERIFY(failedAssertion([&] { rect.eventFilter(&host, nullptr); }).isEmpty());
    rect.setVisible(true);
    QVERIFY(failedAssertion([&] { rect.eventFilter(&host, nullptr); }).contains("event != NULL"));
}

void tst_ResizableRect_mouse::randomWalkMatchesTheReference_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 20; ++seed)
        QTest::newRow(qPrintable(QString("seed %1").arg(seed))) << seed;
}

void tst_ResizableRect_mouse::randomWalkMatchesTheReference()
{
    QFETCH(quint32, seed);
    constexpr int kSteps = 600;
    QRandomGenerator random(seed);
    Host host(QSize(120, 90));
    host.setCursor(Qt::IBeamCursor);
    ResizableRect rect(&host, QRect());
    ReferenceRect reference(120, 90, Qt::IBeamCursor);
    QSignalSpy spy(&rect, SIGNAL(rectChanged(QRect, bool)));
    const auto point = [&] { return QPoint(random.bounded(-20, 145), random.bounded(-20, 115)); };

    for (int step = 0; step < kSteps; ++step) {
        const QPoint p = point();
        const QPoint q = point();
        switch (random.bounded(14)) {
        case 0:
        case 1:
            host.press(p);
            reference.mousePress(p);
            break;
        case 2:
            host.press(p, Qt::RightButton);
            break;
        case 3:
        case 4:
        case 5:
            host.drag(p);
            reference.drag(p);
            break;
        case 6:
            host.hover(p);
            reference.hover(p);
            break;
        case 7:
            host.release(p);
            reference.mouseRelease();
            break;
        case 8:
            host.release(p, Qt::RightButton);
            break;
        case 9:
            rect.setRect(QRect(p, q));
            reference.set(p.x(), p.y(), q.x(), q.y());
            break;
        case 10:
            rect.setVisible(p.x() > 0);
            reference.visible = p.x() > 0;
            break;
        case 11:
            rect.setEnabled(p.x() > 0);
            reference.enabled = p.x() > 0;
            if (!reference.enabled)
                reference.cursor = reference.ownCursor;
            break;
        case 12:
            rect.initArrow();
            reference.head = 5;
            reference.tail = 6;
            break;
        default:
            rect.setArrowHead(p);
            reference.moveEnd(reference.head, p);
            break;
        }
        const QByteArray at = "step " + QByteArray::number(step);
        QVERIFY2(rect.rect() == reference.normalized(), at);
        QVERIFY2(spy.count() == reference.changes, at);
        QVERIFY2(rect.mousePressSection() == reference.press, at);
        QVERIFY2(host.cursor().shape() == reference.cursor, at);
        QVERIFY2(rect.arrowHead() == reference.corner(reference.head), at);
        QVERIFY2(rect.arrowTail() == reference.corner(reference.tail), at);
        for (int i = 0; i < 10; ++i) {
            const QPoint probe = point();
            QVERIFY2(rect.wherePoint(probe) == reference.where(probe), at);
        }
    }
}

void tst_ResizableRect_mouse::disablingRestoresTheCursor()
{
    Host host;
    host.setCursor(Qt::PointingHandCursor);
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    host.hover(QPoint(60, 35));
    QCOMPARE(host.cursor().shape(), Qt::SizeAllCursor);
    rect.setEnabled(true);
    QCOMPARE(host.cursor().shape(), Qt::SizeAllCursor);
    rect.setEnabled(false);
    QCOMPARE(host.cursor().shape(), Qt::PointingHandCursor);
}

void tst_ResizableRect_mouse::theHostsCursorIsRememberedAtTheStart()
{
    Host host;
    host.setCursor(Qt::PointingHandCursor);
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    host.setCursor(Qt::WaitCursor);
    host.hover(QPoint(300, 200));
    QCOMPARE(host.cursor().shape(), Qt::PointingHandCursor);
}

void tst_ResizableRect_mouse::bothButtonsDrag()
{
    Host host;
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    host.press(QPoint(60, 35));
    host.hover(QPoint(70, 45), Qt::LeftButton | Qt::RightButton);
    QCOMPARE(rect.rect(), kRect.translated(10, 10));
    host.release(QPoint(70, 45), Qt::RightButton);
    host.drag(QPoint(80, 45));
    QCOMPARE(rect.rect(), kRect.translated(20, 10));
}

void tst_ResizableRect_mouse::doubleClickIsNotItsConcern()
{
    Host host;
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    QMouseEvent event(QEvent::MouseButtonDblClick, QPoint(60, 35), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(&host, &event);
    QCOMPARE(rect.mousePressSection(), int(ResizableRect::SECTION_OUTSIDE));
}

void tst_ResizableRect_mouse::mirroredArrowReadsEveryRow_data()
{
    QTest::addColumn<QRect>("first");
    QTest::addColumn<QPoint>("head");
    QTest::addColumn<QPoint>("tail");
    // The first flip brings head and tail onto the other diagonal, the mirror swaps them there.
    QTest::newRow("after a horizontal flip")
        << QRect(0, 0, -1, 5) << kRect.bottomRight() << kRect.topLeft();
    QTest::newRow("after a vertical flip")
        << QRect(0, 0, 5, -1) << kRect.topLeft() << kRect.bottomRight();
}

void tst_ResizableRect_mouse::mirroredArrowReadsEveryRow()
{
    QFETCH(QRect, first);
    QFETCH(QPoint, head);
    QFETCH(QPoint, tail);
    ResizableRect rect(nullptr, kRect);
    rect.initArrow();
    rect.updateArrowRect(first);
    rect.updateArrowRect(QRect(0, 0, -1, -1));
    QCOMPARE(rect.arrowHead(), head);
    QCOMPARE(rect.arrowTail(), tail);
}

QTEST_MAIN(tst_ResizableRect_mouse)
#include "tst_ResizableRect_mouse.moc"
