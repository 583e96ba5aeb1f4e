// SPDX-License-Identifier: MIT
#include "CaptureProbe.h"

#include <QScreen>

/// A display of one pixel: everything still works, on next to nothing.
class tst_ScreenCaptureWnd_tiny : public CaptureTest
{
    Q_OBJECT

private slots:
    void captureOnOnePixel();
};

void tst_ScreenCaptureWnd_tiny::captureOnOnePixel()
{
    QCOMPARE(QGuiApplication::primaryScreen()->virtualSize(), QSize(1, 1));
    QVERIFY(QTest::qWaitForWindowExposed(window()));
    m_capture->drag(QPoint(0, 0), QPoint(40, 40));
    // Clamped to the window, the band never gets 3 pixels wide.
    QCOMPARE(m_capture->region()->rect(), QRect(QPoint(0, 0), QPoint(1, 1)));
    QVERIFY(!m_capture->region()->isVisible());
    window()->accept();
    deliver();
    QCOMPARE(m_receiver->count, 1);
    QVERIFY(m_receiver->finished);
    QVERIFY(m_receiver->image.isNull());
}

QTEST_MAIN(tst_ScreenCaptureWnd_tiny)
#include "tst_ScreenCaptureWnd_tiny.moc"
