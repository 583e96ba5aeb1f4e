// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "Screen.h"

/// The capture window on a dense screen: two device pixels to a pixel of the window.
class tst_ScreenCaptureWnd_scaled : public BehaviourTest
{
    Q_OBJECT

private slots:
    void overlayShowsEveryPixelOfTheDesktop();
};

void tst_ScreenCaptureWnd_scaled::overlayShowsEveryPixelOfTheDesktop()
{
    Desktop desktop(1);
    QCOMPARE(desktop.devicePixelRatio(), 2);
    QTRY_COMPARE(screenshot(), desktop.picture());

    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    QVERIFY(QTest::qWaitForWindowActive(capture.window()));
    const QImage dark = dimmed(desktop.picture());
    const auto screen = [] {
        QImage image = screenshot();
        image.setDevicePixelRatio(1);
        return image;
    };
    capture.loupe()->hide();
    QTRY_COMPARE(screen(), dark);
    // Painting a part anew leaves it as it was.
    const QPoint corner(101, 103);
    capture.drag(corner, QPoint(203, 177));
    // The handle stands one pixel outside, and is not cut off at what was dimmed last.
    QTRY_COMPARE(screen().pixelColor((corner - QPoint(1, 1)) * 2), capture.region()->getColor());
    capture.window()->reset();
    capture.loupe()->hide();
    QTRY_COMPARE(screen(), dark);
}

QTEST_MAIN(tst_ScreenCaptureWnd_scaled)
#include "tst_ScreenCaptureWnd_scaled.moc"
