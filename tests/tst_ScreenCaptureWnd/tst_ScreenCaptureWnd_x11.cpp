// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "Screen.h"

#include <QFileDialog>
#include <QImageReader>
#include <QLineEdit>
#include <QPainter>
#include <QTemporaryDir>
#include <QTimer>

namespace
{

const QRect kRegion(QPoint(300, 250), QPoint(649, 449));
const QColor kSelection(0x00, 0xaa, 0xcc);

void paintOutline(QPainter& painter, const QRect& r)
{
    painter.fillRect(r.left(), r.top(), r.width() + 1, 1, kSelection);
    painter.fillRect(r.left(), r.bottom() + 1, r.width() + 1, 1, kSelection);
    painter.fillRect(r.left(), r.top(), 1, r.height() + 1, kSelection);
    painter.fillRect(r.right() + 1, r.top(), 1, r.height() + 1, kSelection);
}

void paintHandles(QPainter& painter, const QRect& r)
{
    const int xs[] = {r.left() - 1, r.left() - 1 + r.width() / 2, r.right()};
    const int ys[] = {r.top() - 1, r.top() - 1 + r.height() / 2, r.bottom()};
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            if (i != 1 || j != 1)
                painter.fillRect(xs[i] - 3, ys[j] - 3, 9, 9, kSelection);
        }
    }
}

void paintLabel(QPainter& painter, const QRect& r)
{
    const QRect label(r.left(), r.top() - 28, 100, 28);
    painter.fillRect(label, QColor(0, 0, 0, 128));
    painter.setPen(Qt::white);
    painter.setFont(QFont("Courier New", 14));
    painter.drawText(label, Qt::AlignCenter,
                     QString::number(r.width()) + " x " + QString::number(r.height()));
}

/// The overlay as a person sees it, composed from its parts.
QImage overlayWith(const QImage& picture, const QRect& region)
{
    QImage image = dimmed(picture);
    QPainter painter(&image);
    painter.drawImage(region.topLeft(), picture.copy(region));
    paintOutline(painter, region);
    paintHandles(painter, region);
    paintLabel(painter, region);
    return image;
}

/// Without the tool bar, whose looks are the style's.
QImage beside(const CaptureProbe& capture, const QImage& screen)
{
    return without(screen, capture.toolBar()->geometry());
}

} // namespace

/// The capture window on a real X server with a window manager: what is grabbed, what is seen, and
/// what is delivered.
class tst_ScreenCaptureWnd_x11 : public BehaviourTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void grabbedPictureIsTheDesktop();
    void everyCaptureGrabsAnew();
    void windowCoversTheDesktopDimmed();
    void windowStaysOnTopOfLaterWindows();
    void regionIsBrightWithBorderHandlesAndLabel();
    void movedRegionLeavesNoTrace();
    void regionMayReachOnePixelBeyondTheScreen();
    void regionInAWindowLargerThanThePicture();
    void regionWithoutSizeShowsAndDeliversNothing_data();
    void regionWithoutSizeShowsAndDeliversNothing();
    void loupeMagnifiesThePixelsUnderTheCursor();
    void loupeShowsTheDraggedEdge_data();
    void loupeShowsTheDraggedEdge();
    void finishedCaptureDeliversTheRegion_data();
    void finishedCaptureDeliversTheRegion();
    void shortDragDeliversANullPicture();
    void saveWritesTheRegion_data();
    void saveWritesTheRegion();
    void failedSaveIsSilent();
    void realMouseTakesACapture();
    void realEscapeCancels();
    void cursorShowsWhatADragWouldDo();

private:
    void showOverlay(const CaptureProbe& capture);

    QScopedPointer<Desktop> m_desktop;
};

void tst_ScreenCaptureWnd_x11::initTestCase()
{
    QCOMPARE(QGuiApplication::platformName(), QString("xcb"));
    m_desktop.reset(new Desktop(1));
    QTRY_COMPARE(screenshot(), m_desktop->picture());
}

// The window of the test before is off the screen before this one's desktop is photographed.
void tst_ScreenCaptureWnd_x11::init()
{
    BehaviourTest::init();
    QTRY_COMPARE(screenshot(), m_desktop->picture());
}

/// Shows the window and waits until the overlay is what is on the screen.
void tst_ScreenCaptureWnd_x11::showOverlay(const CaptureProbe& capture)
{
    capture.window()->showFullDesktop(true);
    QVERIFY(QTest::qWaitForWindowActive(capture.window()));
    const QImage expected = dimmed(m_desktop->picture());
    QTRY_COMPARE(without(screenshot(), capture.loupe()->geometry()),
                 without(expected, capture.loupe()->geometry()));
}

void tst_ScreenCaptureWnd_x11::grabbedPictureIsTheDesktop()
{
    CaptureProbe capture;
    capture.window()->resize(screenRect().size());
    capture.region()->setRect(screenRect());
    QVERIFY(capture.window()->captureImage().isNull());
    capture.region()->setVisible(true);
    QCOMPARE(capture.window()->captureImage().convertToFormat(QImage::Format_RGB32),
             m_desktop->picture());
}

void tst_ScreenCaptureWnd_x11::everyCaptureGrabsAnew()
{
    {
        CaptureProbe first;
        first.window()->showFullDesktop(true);
        QVERIFY(QTest::qWaitForWindowExposed(first.window()));
        first.window()->reject();
        deliver();
        QVERIFY(first.isGone());
    }
    m_desktop.reset(new Desktop(2));
    QTRY_COMPARE(screenshot(), m_desktop->picture());
    CaptureProbe second;
    showOverlay(second);
    // A desktop that changes under the running capture is not seen by it.
    const QImage frozen = m_desktop->picture();
    m_desktop.reset(new Desktop(3));
    second.drag(kRegion.topLeft(), kRegion.bottomRight());
    QCOMPARE(second.window()->captureImage().convertToFormat(QImage::Format_RGB32),
             frozen.copy(kRegion));
    second.window()->hide();
    QTRY_COMPARE(screenshot(), m_desktop->picture());
}

void tst_ScreenCaptureWnd_x11::windowCoversTheDesktopDimmed()
{
    CaptureProbe capture;
    showOverlay(capture);
    QCOMPARE(capture.window()->geometry(), screenRect());
    QCOMPARE(capture.window()->frameGeometry(), screenRect());
}

void tst_ScreenCaptureWnd_x11::windowStaysOnTopOfLaterWindows()
{
    CaptureProbe capture;
    showOverlay(capture);
    QWidget later;
    later.setGeometry(400, 300, 200, 150);
    later.show();
    QTRY_VERIFY(later.windowHandle()->isExposed());
    const QRect loupe = capture.loupe()->geometry();
    QTRY_COMPARE(without(screenshot(), loupe), without(dimmed(m_desktop->picture()), loupe));
}

void tst_ScreenCaptureWnd_x11::regionIsBrightWithBorderHandlesAndLabel()
{
    CaptureProbe capture;
    showOverlay(capture);
    capture.drag(kRegion.topLeft(), kRegion.bottomRight());
    QTRY_COMPARE(beside(capture, screenshot()),
                 beside(capture, overlayWith(m_desktop->picture(), kRegion)));
}

void tst_ScreenCaptureWnd_x11::movedRegionLeavesNoTrace()
{
    CaptureProbe capture;
    showOverlay(capture);
    capture.drag(kRegion.topLeft(), kRegion.bottomRight());
    QTRY_COMPARE(beside(capture, screenshot()),
                 beside(capture, overlayWith(m_desktop->picture(), kRegion)));
    capture.drag(kRegion.center(), kRegion.center() + QPoint(37, -53));
    const QRect moved = kRegion.translated(37, -53);
    QTRY_COMPARE(beside(capture, screenshot()),
                 beside(capture, overlayWith(m_desktop->picture(), moved)));
    capture.drag(moved.topLeft(), moved.topLeft() + QPoint(90, 20));
    QTRY_COMPARE(beside(capture, screenshot()),
                 beside(capture, overlayWith(m_desktop->picture(), moved.adjusted(90, 20, 0, 0))));
    capture.window()->reset();
    const QRect loupe = capture.loupe()->geometry();
    QTRY_COMPARE(without(screenshot(), loupe), without(dimmed(m_desktop->picture()), loupe));
}

void tst_ScreenCaptureWnd_x11::regionMayReachOnePixelBeyondTheScreen()
{
    CaptureProbe capture;
    showOverlay(capture);
    const QPoint beyond(screenRect().width() + 50, screenRect().height() + 50);
    capture.drag(kRegion.topLeft(), beyond);
    const QRect region(kRegion.topLeft(), QPoint(screenRect().width(), screenRect().height()));
    QCOMPARE(capture.region()->rect(), region);
    QCOMPARE(capture.window()->captureImage().convertToFormat(QImage::Format_RGB32),
             m_desktop->picture().copy(region));
    QTRY_COMPARE(beside(capture, screenshot()),
                 beside(capture, overlayWith(m_desktop->picture(), region)));
}

void tst_ScreenCaptureWnd_x11::regionInAWindowLargerThanThePicture()
{
    CaptureProbe capture;
    const QSize larger = screenRect().size() + QSize(100, 80);
    capture.window()->resize(larger);
    capture.loupe()->hide();
    const QRect region(kRegion.topLeft(), QPoint(larger.width() - 20, larger.height() - 30));
    capture.region()->setRect(region);
    capture.region()->setVisible(true);

    // Beyond the picture the region shows what a copy of it is filled with there.
    const QImage shown = capture.window()->grab().toImage();
    const QPoint outside(region.right() - 20, region.bottom() - 20);
    const QImage cut = capture.window()->captureImage();
    QCOMPARE(cut.size(), region.size());
    QCOMPARE(shown.pixelColor(outside).rgb(), cut.pixelColor(outside - region.topLeft()).rgb());
    const QPoint inside(region.left() + 20, region.top() + 20);
    QCOMPARE(shown.pixelColor(inside).rgb(), m_desktop->picture().pixel(inside));
}

void tst_ScreenCaptureWnd_x11::regionWithoutSizeShowsAndDeliversNothing_data()
{
    QTest::addColumn<QPoint>("end");
    QTest::newRow("no width") << QPoint(399, 420);
    QTest::newRow("no height") << QPoint(520, 299);
    QTest::newRow("neither") << QPoint(399, 299);
}

void tst_ScreenCaptureWnd_x11::regionWithoutSizeShowsAndDeliversNothing()
{
    QFETCH(QPoint, end);
    CaptureProbe capture;
    showOverlay(capture);
    const QPoint start(400, 300);
    capture.press(start);
    capture.move(start + QPoint(90, 90));
    capture.move(end);
    capture.release(end);
    QVERIFY(capture.region()->isVisible());
    QVERIFY(capture.region()->rect().isEmpty());
    // Handles and label lie on this strip, but no pixel of the desktop shines through beside them.
    const QImage dark = dimmed(m_desktop->picture());
    const QRect left(0, 0, 380, 768);
    const QRect below(0, 460, 1024, 308);
    const QRect right(560, 0, 464, 768);
    for (const QRect& area : {left, below, right})
        QTRY_COMPARE(screenshot().copy(area), dark.copy(area));
    QVERIFY(capture.window()->captureImage().isNull());
    QVERIFY(capture.window()->scribbledImage().isNull());
}

namespace
{

/// Whether the loupe shows the 16 x 16 pixels around `p`, five times magnified. The frames and the
/// cross-hair cover the outermost blocks and the two middle lines.
bool loupeShows(const MagnifierWidget* loupe, const QImage& picture, const QPoint& p)
{
    const QImage shown = const_cast<MagnifierWidget*>(loupe)->grab().toImage();
    for (int row = 1; row < 15; ++row) {
        for (int column = 1; column < 15; ++column) {
            if (row == 7 || row == 8 || column == 7 || column == 8)
                continue;
            const QRgb source = picture.pixel(p.x() - 7 + column, p.y() - 7 + row);
            if (shown.pixel(column * 5 + 2, row * 5 + 2) != source)
                return false;
        }
    }
    return true;
}

} // namespace

void tst_ScreenCaptureWnd_x11::loupeMagnifiesThePixelsUnderTheCursor()
{
    CaptureProbe capture;
    showOverlay(capture);
    const QPoint cursor(321, 234);
    capture.move(cursor, Qt::NoButton);
    QCOMPARE(capture.loupe()->pos(), cursor + QPoint(6, 26));
    QVERIFY(loupeShows(capture.loupe(), m_desktop->picture(), cursor));
    const QImage loupe = capture.loupe()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    QTRY_COMPARE(screenshot().copy(capture.loupe()->geometry()), loupe);
    QCOMPARE(loupe.pixelColor(40, 40), kSelection);
}

void tst_ScreenCaptureWnd_x11::loupeShowsTheDraggedEdge_data()
{
    QTest::addColumn<QPoint>("press");
    QTest::addColumn<QPoint>("shown");
    const QRect r = kRegion;
    const QPoint middle = r.topLeft() - QPoint(1, 1) + QPoint(r.width() / 2, r.height() / 2);
    const QPoint off(2, 3);
    QTest::newRow("left") << QPoint(r.left() - 1, middle.y()) + off
                          << QPoint(r.left(), middle.y() + off.y());
    QTest::newRow("right") << QPoint(r.right(), middle.y()) + off
                           << QPoint(r.right(), middle.y() + off.y());
    QTest::newRow("top") << QPoint(middle.x(), r.top() - 1) + off
                         << QPoint(middle.x() + off.x(), r.top());
    QTest::newRow("bottom") << QPoint(middle.x(), r.bottom()) + off
                            << QPoint(middle.x() + off.x(), r.bottom());
    QTest::newRow("top-left") << r.topLeft() + off << r.topLeft();
    QTest::newRow("top-right") << r.topRight() + off << r.topRight();
    QTest::newRow("bottom-left") << r.bottomLeft() + off << r.bottomLeft();
    QTest::newRow("bottom-right") << r.bottomRight() + off << r.bottomRight();
}

void tst_ScreenCaptureWnd_x11::loupeShowsTheDraggedEdge()
{
    QFETCH(QPoint, press);
    QFETCH(QPoint, shown);
    CaptureProbe capture;
    showOverlay(capture);
    capture.drag(kRegion.topLeft(), kRegion.bottomRight());
    capture.press(press);
    QVERIFY(capture.loupe()->isVisible());
    QCOMPARE(capture.loupe()->pos(), press + QPoint(6, 26));
    QVERIFY(loupeShows(capture.loupe(), m_desktop->picture(), shown));
}

void tst_ScreenCaptureWnd_x11::finishedCaptureDeliversTheRegion_data()
{
    QTest::addColumn<bool>("byDoubleClick");
    QTest::newRow("double-click") << true;
    QTest::newRow("done") << false;
}

void tst_ScreenCaptureWnd_x11::finishedCaptureDeliversTheRegion()
{
    QFETCH(bool, byDoubleClick);
    CaptureProbe capture;
    Receiver receiver;
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    showOverlay(capture);
    capture.drag(kRegion.topLeft(), kRegion.bottomRight());
    if (byDoubleClick)
        capture.doubleClick(kRegion.center());
    else
        capture.window()->onBtnSend();
    QVERIFY(!capture.window()->isVisible());
    deliver();
    QCOMPARE(receiver.count, 1);
    QVERIFY(receiver.finished);
    QCOMPARE(receiver.image.convertToFormat(QImage::Format_RGB32),
             m_desktop->picture().copy(kRegion));
    QVERIFY(capture.isGone());
    QTRY_COMPARE(screenshot(), m_desktop->picture());
}

void tst_ScreenCaptureWnd_x11::shortDragDeliversANullPicture()
{
    CaptureProbe capture;
    Receiver receiver;
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    showOverlay(capture);
    capture.drag(kRegion.topLeft(), kRegion.topLeft() + QPoint(1, 1));
    capture.window()->accept();
    deliver();
    QVERIFY(receiver.finished);
    QVERIFY(receiver.image.isNull());
}

void tst_ScreenCaptureWnd_x11::saveWritesTheRegion_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("format");
    QTest::newRow("PNG") << "a.png" << QByteArray("png");
    QTest::newRow("JPEG") << "a.jpg" << QByteArray("jpeg");
    QTest::newRow("BMP") << "a.bmp" << QByteArray("bmp");
    QTest::newRow("no suffix writes nothing") << "a" << QByteArray();
}

void tst_ScreenCaptureWnd_x11::saveWritesTheRegion()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, format);
    QTemporaryDir dir;
    CaptureProbe capture;
    showOverlay(capture);
    capture.drag(kRegion.topLeft(), kRegion.bottomRight());
    QTimer::singleShot(0, qApp, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        dialog->findChild<QLineEdit*>()->setText(dir.filePath(name));
        static_cast<QDialog*>(dialog)->accept();
    });
    capture.window()->save();

    const QByteArray written = QImageReader::imageFormat(dir.filePath(name));
    QCOMPARE(written, format);
    if (format == "png" || format == "bmp") {
        QCOMPARE(QImage(dir.filePath(name)).convertToFormat(QImage::Format_RGB32),
                 m_desktop->picture().copy(kRegion));
    }
    QVERIFY(capture.window()->isVisible());
    QVERIFY(!capture.region()->isVisible());
}

void tst_ScreenCaptureWnd_x11::failedSaveIsSilent()
{
    QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkdir("taken.png"));
    CaptureProbe capture;
    showOverlay(capture);
    capture.drag(kRegion.topLeft(), kRegion.bottomRight());
    QTimer::singleShot(0, qApp, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        dialog->findChild<QLineEdit*>()->setText(dir.filePath("none/of/these.png"));
        // The dialog itself refuses such a name, so it is handed on as a chosen file.
        dialog->setFileMode(QFileDialog::AnyFile);
        static_cast<QDialog*>(dialog)->done(QDialog::Accepted);
    });
    capture.window()->save();
    QVERIFY(!QFile::exists(dir.filePath("none/of/these.png")));
    QVERIFY(capture.window()->isVisible());
    QVERIFY(!capture.region()->isVisible());
}

void tst_ScreenCaptureWnd_x11::realMouseTakesACapture()
{
    CaptureProbe capture;
    Receiver receiver;
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    showOverlay(capture);
    xdotool(moveTo(kRegion.topLeft())
            << "mousedown"
            << "1" << moveTo(kRegion.center()) << moveTo(kRegion.bottomRight()) << "mouseup"
            << "1");
    QTRY_COMPARE(capture.region()->rect(), kRegion);
    QTRY_COMPARE(beside(capture, screenshot()),
                 beside(capture, overlayWith(m_desktop->picture(), kRegion)));
    xdotool(moveTo(kRegion.center()) << "click"
                                     << "--repeat"
                                     << "2"
                                     << "--delay"
                                     << "20"
                                     << "1");
    QTRY_COMPARE(receiver.count, 1);
    QVERIFY(receiver.finished);
    QCOMPARE(receiver.image.convertToFormat(QImage::Format_RGB32),
             m_desktop->picture().copy(kRegion));
    QTRY_VERIFY(capture.isGone());
}

void tst_ScreenCaptureWnd_x11::realEscapeCancels()
{
    CaptureProbe capture;
    Receiver receiver;
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    showOverlay(capture);
    xdotool({"key", "Escape"});
    QTRY_COMPARE(receiver.count, 1);
    QVERIFY(!receiver.finished);
    QVERIFY(receiver.image.isNull());
    QTRY_VERIFY(capture.isGone());
}

void tst_ScreenCaptureWnd_x11::cursorShowsWhatADragWouldDo()
{
    CaptureProbe capture;
    showOverlay(capture);
    capture.drag(kRegion.topLeft(), kRegion.bottomRight());
    capture.move(kRegion.center(), Qt::NoButton);
    QCOMPARE(capture.window()->cursor().shape(), Qt::SizeAllCursor);
    capture.move(kRegion.bottomRight(), Qt::NoButton);
    QCOMPARE(capture.window()->cursor().shape(), Qt::SizeFDiagCursor);
    capture.move(kRegion.topLeft() - QPoint(60, 60), Qt::NoButton);
    QCOMPARE(capture.window()->cursor().shape(), Qt::BitmapCursor);
}

QTEST_MAIN(tst_ScreenCaptureWnd_x11)
#include "tst_ScreenCaptureWnd_x11.moc"
