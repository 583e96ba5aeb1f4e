// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "CaptureProbe.h"

#include <QScreen>

/// A display of one pixel: everything still works, on next to nothing.
class tst_ScreenCaptureWnd_tiny : public BehaviourTest
{
    Q_OBJECT

private slots:
    void captureOnOnePixel();
};

void tst_ScreenCaptureWnd_tiny::captureOnOnePixel()
{
    QCOMPARE(QGuiApplication::primaryScreen()->virtualSize(), QSize(1, 1));
    CaptureProbe capture;
    Receiver receiver;
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    capture.window()->showFullDesktop(true);
    QVERIFY(QTest::qWaitForWindowExposed(capture.window()));
    capture.drag(QPoint(0, 0), QPoint(40, 40));
    // Clamped to the window, the band never gets 3 pixels wide.
    QCOMPARE(capture.region()->rect(), QRect(QPoint(0, 0), QPoint(1, 1)));
    QVERIFY(!capture.region()->isVisible());
    capture.window()->accept();
    deliver();
    QCOMPARE(receiver.count, 1);
    QVERIFY(receiver.finished);
    QVERIFY(receiver.image.isNull());
}

QTEST_MAIN(tst_ScreenCaptureWnd_tiny)
#include "tst_ScreenCaptureWnd_tiny.moc"
