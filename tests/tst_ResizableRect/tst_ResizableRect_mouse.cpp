// SPDX-License-Identifier: MIT
#include "AssertionProbe.h"
#include "BehaviourTest.h"
#include "Host.h"
#include "RectWalk.h"
#include "Repainted.h"

#include <QRandomGenerator>
#include <vector>

/// What the rectangle does with its host's mouse: rows for the reader, and random walks.
class tst_ResizableRect_mouse : public BehaviourTest
{
    Q_OBJECT

private slots:
    void randomWalkMatchesTheReference_data();
    void randomWalkMatchesTheReference();
    void cursorFollowsTheSection_data();
    void cursorFollowsTheSection();
    void draggingMovesOrResizes_data();
    void draggingMovesOrResizes();
    void draggingPastTheOppositeEdgeInvertsUntilRelease();
    void releaseFlipsTheArrow_data();
    void releaseFlipsTheArrow();
    void releaseIsSilent();
    void releaseIsAcceptedOnlyOnTheRectangle();
    void otherObjectsAreNotWatched();
    void filterAssertsAnEvent();
};

void tst_ResizableRect_mouse::randomWalkMatchesTheReference_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 20; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void tst_ResizableRect_mouse::randomWalkMatchesTheReference()
{
    QFETCH(quint32, seed);
    constexpr std::size_t kSteps = 600;
    QRandomGenerator random(seed);
    std::vector<uchar> bytes(kSteps * RectWalk::kStepBytes);
    for (uchar& byte : bytes)
        byte = uchar(random.generate());
    QCOMPARE(RectWalk::differenceAfter(bytes.data(), bytes.size()), QByteArray());
}

void tst_ResizableRect_mouse::cursorFollowsTheSection_data()
{
    QTest::addColumn<QPoint>("p");
    QTest::addColumn<Qt::CursorShape>("shape");
    QTest::newRow("left") << anchorOf(0) << Qt::SizeHorCursor;
    QTest::newRow("right") << anchorOf(1) << Qt::SizeHorCursor;
    QTest::newRow("top") << anchorOf(2) << Qt::SizeVerCursor;
    QTest::newRow("bottom") << anchorOf(3) << Qt::SizeVerCursor;
    QTest::newRow("top-left") << anchorOf(4) << Qt::SizeFDiagCursor;
    QTest::newRow("top-right") << anchorOf(5) << Qt::SizeBDiagCursor;
    QTest::newRow("bottom-left") << anchorOf(6) << Qt::SizeBDiagCursor;
    QTest::newRow("bottom-right") << anchorOf(7) << Qt::SizeFDiagCursor;
    QTest::newRow("inside") << QPoint(60, 35) << Qt::SizeAllCursor;
    QTest::newRow("2 px outside the top edge") << QPoint(30, 8) << Qt::SizeAllCursor;
    QTest::newRow("10 px outside") << QPoint(30, 0) << Qt::IBeamCursor;
}

void tst_ResizableRect_mouse::cursorFollowsTheSection()
{
    QFETCH(QPoint, p);
    QFETCH(Qt::CursorShape, shape);
    Host host;
    host.setCursor(Qt::IBeamCursor);
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    // What the rectangle restores is the cursor that it found.
    host.setCursor(Qt::WaitCursor);
    host.hover(p);
    QCOMPARE(host.cursor().shape(), shape);
    host.press(p);
    host.move(QPoint(200, 200));
    QCOMPARE(host.cursor().shape(), shape);
}

void tst_ResizableRect_mouse::draggingMovesOrResizes_data()
{
    QTest::addColumn<QPoint>("press");
    QTest::addColumn<QPoint>("to");
    QTest::addColumn<QRect>("expected");
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
    QTest::newRow("outside") << QPoint(200, 200) << QPoint(60, 35) << kRect;
}

void tst_ResizableRect_mouse::draggingMovesOrResizes()
{
    QFETCH(QPoint, press);
    QFETCH(QPoint, to);
    QFETCH(QRect, expected);
    Host host;
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    host.press(press);
    host.move(to);
    QCOMPARE(rect.rect(), expected);
}

void tst_ResizableRect_mouse::draggingPastTheOppositeEdgeInvertsUntilRelease()
{
    Host host;
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    host.press(anchorOf(1));
    host.move(QPoint(0, 34));
    const QRect upright = edges(0, 10, 10, 59);
    QCOMPARE(rect.rect(), upright);
    QCOMPARE(rect.wherePoint(QPoint(-2, 34)), 1);
    QCOMPARE(rect.wherePoint(QPoint(12, 34)), 0);
    host.release(QPoint(0, 34));
    QCOMPARE(rect.rect(), upright);
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
    host.move(to);
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
    host.move(QPoint(2, 34));
    QSignalSpy spy(&rect, SIGNAL(rectChanged(QRect, bool)));
    QCOMPARE(repaintedBy(host, [&] { host.release(QPoint(2, 34)); }), QRegion());
    QCOMPARE(spy.count(), 0);
}

void tst_ResizableRect_mouse::releaseIsAcceptedOnlyOnTheRectangle()
{
    Host host;
    ResizableRect rect(&host, kRect);
    rect.setVisible(true);
    const auto accepts = [&](Qt::MouseButton button) {
        const QPoint p(60, 35);
        QMouseEvent event(QEvent::MouseButtonRelease, p, host.mapToGlobal(p), button, Qt::NoButton,
                          Qt::NoModifier);
        event.ignore();
        rect.eventFilter(&host, &event);
        return event.isAccepted();
    };
    host.press(QPoint(200, 200));
    QVERIFY(!accepts(Qt::LeftButton));
    host.press(QPoint(60, 35));
    QVERIFY(!accepts(Qt::RightButton));
    QVERIFY(accepts(Qt::LeftButton));
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

QTEST_MAIN(tst_ResizableRect_mouse)
#include "tst_ResizableRect_mouse.moc"
