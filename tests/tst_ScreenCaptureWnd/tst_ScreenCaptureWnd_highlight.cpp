// SPDX-License-Identifier: MIT
#include "Access.h"
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "Pictures.h"

namespace
{

constexpr QSize kDesktopSize(400, 300);
const QRect kOtherWindow(QPoint(50, 40), QSize(120, 90));
const QColor kSelectionColor("#00aacc");

QImage desktopPicture()
{
    return places(kDesktopSize);
}

} // namespace

/// The highlight of a window below the cursor. The hook that finds such a window never finds one,
/// so these tests set what it would have found.
class tst_ScreenCaptureWnd_highlight : public BehaviourTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void windowIsShownUndimmedInAThickFrame();
    void hookFindsNoWindow();
    void clickTakesTheWindow();
    void dragDropsTheWindow_data();
    void dragDropsTheWindow();
    void resetDropsTheWindow();

private:
    QRect& highlight() const { return ScreenCaptureWndAccess::highlight(m_capture->window()); }
    QImage shown() const;
    static QImage framed(const QRect& frame);

    QScopedPointer<CaptureProbe> m_capture;
};

void tst_ScreenCaptureWnd_highlight::init()
{
    BehaviourTest::init();
    m_capture.reset(new CaptureProbe);
    m_capture->window()->setGeometry(QRect(QPoint(), kDesktopSize));
    ScreenCaptureWndAccess::setDesktop(m_capture->window(), desktopPicture());
    highlight() = kOtherWindow;
}

void tst_ScreenCaptureWnd_highlight::cleanup()
{
    m_capture.reset();
    BehaviourTest::cleanup();
}

/// The window without its children.
QImage tst_ScreenCaptureWnd_highlight::shown() const
{
    QImage image(kDesktopSize, QImage::Format_RGB32);
    m_capture->window()->render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

QImage tst_ScreenCaptureWnd_highlight::framed(const QRect& frame)
{
    QImage image = dimmed(desktopPicture());
    QPainter painter(&image);
    painter.drawImage(frame.topLeft(), desktopPicture().copy(frame));
    painter.setPen(QPen(QBrush(kSelectionColor), 4.0, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    painter.drawRect(frame);
    return image;
}

void tst_ScreenCaptureWnd_highlight::windowIsShownUndimmedInAThickFrame()
{
    QRect frame(QPoint(), QSize(116, 86));
    frame.moveCenter(kOtherWindow.center());
    QCOMPARE(shown(), framed(frame));
}

void tst_ScreenCaptureWnd_highlight::hookFindsNoWindow()
{
    m_capture->move(kOtherWindow.center(), Qt::NoButton);
    QVERIFY(highlight().isNull());
}

void tst_ScreenCaptureWnd_highlight::clickTakesTheWindow()
{
    m_capture->click(kOtherWindow.center(), Qt::LeftButton);
    QCOMPARE(m_capture->region()->rect(), kOtherWindow);
    QVERIFY(m_capture->region()->isVisible());
    QVERIFY(highlight().isNull());
}

void tst_ScreenCaptureWnd_highlight::dragDropsTheWindow_data()
{
    QTest::addColumn<QPoint>("way");
    QTest::addColumn<bool>("dropped");
    QTest::newRow("too short") << QPoint(1, 1) << false;
    QTest::newRow("wide") << QPoint(2, 0) << true;
    QTest::newRow("high") << QPoint(0, 2) << true;
}

void tst_ScreenCaptureWnd_highlight::dragDropsTheWindow()
{
    QFETCH(QPoint, way);
    QFETCH(bool, dropped);
    const QPoint from = kOtherWindow.center();
    m_capture->press(from);
    m_capture->move(from + way);
    QCOMPARE(highlight().isNull(), dropped);
    m_capture->release(from + way);
    QCOMPARE(m_capture->region()->rect(), dropped ? QRect(from, from + way) : kOtherWindow);
}

void tst_ScreenCaptureWnd_highlight::resetDropsTheWindow()
{
    ScreenCaptureWnd* window = m_capture->window();
    m_capture->drag(QPoint(10, 10), QPoint(100, 100));
    highlight() = kOtherWindow;
    window->undo();
    QVERIFY(highlight().isNull());
}

QTEST_MAIN(tst_ScreenCaptureWnd_highlight)
#include "tst_ScreenCaptureWnd_highlight.moc"
