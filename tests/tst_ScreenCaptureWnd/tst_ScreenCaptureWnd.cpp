// SPDX-License-Identifier: MIT
#include "Access.h"
#include "AssertionProbe.h"
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "Pictures.h"

#include <QDesktopWidget>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMetaMethod>
#include <QTemporaryDir>
#include <QTimer>

namespace
{

constexpr QPoint kFrom(100, 120);
constexpr QPoint kTo(299, 219);
const QRect kDragged(kFrom, kTo);
constexpr QPoint kInside(200, 170);
constexpr QPoint kFarOutside(500, 400);

enum Ending {
    Accept,
    Done,
    DoubleClick,
    Reject,
    Escape,
    RightClickWhileIdle,
    CloseByWindowManager
};

} // namespace
Q_DECLARE_METATYPE(Ending)

/// The capture window without a desktop picture: this platform's grab fails, so every picture here
/// is null. What is painted and delivered from a real grab is tested on a real X server.
class tst_ScreenCaptureWnd : public BehaviourTest
{
    Q_OBJECT

private slots:
    void metaObjectKeepsSignalsAndSlotsInOrder();
    void windowIsFramelessOnTopAndDeletesItself();
    void cursorHasItsHotSpotAtTheTopLeft();
    void selectionIsHiddenAtFirstAndHasTheSelectionLook();
    void loupeIsThereFromTheStart();
    void theSameWindowServesOneCapture();
    void theNextCaptureGetsANewWindow();
    void fullDesktopSavesAndRestoresTheGeometry();
    void fullDesktopShowsTheWindowWhateverChanged();

    void captureEndsOnce_data();
    void captureEndsOnce();
    void resultArrivesAfterTheEndReturned();
    void endedWindowDeliversNothingMore();
    void onlyTheLastReceiverGetsTheResult();
    void connectingTwiceDeliversOnce();
    void nullReceiverOnlyDisconnects_data();
    void nullReceiverOnlyDisconnects();
    void receiverThatDiedIsForgotten();
    void otherButtonsDoNotFinishByDoubleClick();
    void failedGrabGivesNullPictures();

    void leftPressStartsAnInvalidHiddenRectangle();
    void bandShowsFromThreePixelsOn_data();
    void bandShowsFromThreePixelsOn();
    void bandRepaintsOnlyWhereItIs();
    void changedRectanglesArePaintedOnce_data();
    void changedRectanglesArePaintedOnce();
    void bandStaysVisibleWhenDraggedBack();
    void dragInAnyDirectionIsNormalized();
    void clickWithoutDragShowsTheToolBar();
    void releaseHidesTheLoupeInEveryState();
    void pressInTheRegionShowsTheLoupeOnlyForHandles_data();
    void pressInTheRegionShowsTheLoupeOnlyForHandles();
    void regionMovesAndResizesAfterItStands();
    void loupeFollowsTheCursorOnlyWhileVisible();
    void loupeForgetsTheHandleOfADroppedRegion();
    void loupeFlipsAtTheEdges_data();
    void loupeFlipsAtTheEdges();
    void rightClick_data();
    void rightClick();
    void rightReleaseWhileSelectingDoesNothing();
    void toolBarFollowsTheRegion();
    void toolBarStandsAboveALowRegion();
    void undoDropsTheRegion();
    void undoWhileIdleDoesNothing();
    void redoWithoutEditsDoesNothing();
    void resetStartsOver();
    void resetBringsTheLoupeToTheCursor();
    void resetKeepsTheWindowOpen();

    void saveWritesAndStartsOver();
    void saveCancelledLeavesEverything();
    void eventFilterRequiresAnEvent();
};

void tst_ScreenCaptureWnd::metaObjectKeepsSignalsAndSlotsInOrder()
{
    const QMetaObject& meta = ScreenCaptureWnd::staticMetaObject;
    const char* const signatures[] = {"captureFinished(QImage,bool)",
                                      "penColorChanged(QString,QColor)",
                                      "undo()",
                                      "redo()",
                                      "save()",
                                      "onBtnSend()",
                                      "accept()",
                                      "reject()",
                                      "onCaptureRectChanged(QRect)",
                                      "onPaintTypeChanged()",
                                      "onFontSizeChanged(QString)",
                                      "onPenWidthChanged(int)",
                                      "onPenColorChanged(QColor)",
                                      "onMosaicBlurChanged(int)"};
    QCOMPARE(meta.className(), "ScreenCaptureWnd");
    int index = meta.methodOffset();
    for (const char* signature : signatures)
        QCOMPARE(meta.method(index++).methodSignature(), QByteArray(signature));
    QCOMPARE(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Signal);
    QCOMPARE(meta.method(meta.methodOffset() + 1).methodType(), QMetaMethod::Signal);
    QCOMPARE(meta.method(meta.methodOffset() + 2).methodType(), QMetaMethod::Slot);
}

void tst_ScreenCaptureWnd::windowIsFramelessOnTopAndDeletesItself()
{
    CaptureProbe capture;
    const ScreenCaptureWnd* window = capture.window();
    QCOMPARE(window->objectName(), QString("ScreenCaptureWnd"));
    QVERIFY(!window->parentWidget());
    const Qt::WindowFlags wanted = Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
    QCOMPARE(window->windowFlags() & wanted, wanted);
    QCOMPARE(window->windowType(), Qt::Tool);
    QVERIFY(window->testAttribute(Qt::WA_TranslucentBackground));
    QVERIFY(window->testAttribute(Qt::WA_DeleteOnClose));
    QVERIFY(window->hasMouseTracking());
    QVERIFY(!window->isVisible());
}

void tst_ScreenCaptureWnd::cursorHasItsHotSpotAtTheTopLeft()
{
    CaptureProbe capture;
    const QCursor cursor = capture.window()->cursor();
    QCOMPARE(cursor.shape(), Qt::BitmapCursor);
    QCOMPARE(cursor.hotSpot(), QPoint(0, 0));
    QCOMPARE(cursor.pixmap().size(), QSize(14, 21));
}

void tst_ScreenCaptureWnd::selectionIsHiddenAtFirstAndHasTheSelectionLook()
{
    CaptureProbe capture;
    ResizableRect* region = capture.region();
    QVERIFY(region);
    QCOMPARE(region->parent(), capture.window());
    QVERIFY(!region->isVisible());
    QVERIFY(region->rect().isNull());
    QCOMPARE(region->getColor(), QColor("#00aacc"));
    QVERIFY(region->isSizeInforVisible());
}

void tst_ScreenCaptureWnd::loupeIsThereFromTheStart()
{
    QCursor::setPos(50, 60);
    CaptureProbe capture;
    QVERIFY(!capture.loupe()->isHidden());
    QCOMPARE(capture.loupe()->size(), QSize(80, 80));
    QCOMPARE(capture.loupe()->styleSheet(),
             QString("background:rgba(0,0,0,0%); border-width:0; border-style:outset}"));
    capture.window()->showFullDesktop(true);
    capture.window()->reset();
    QCOMPARE(capture.loupe()->pos(),
             capture.window()->mapFromGlobal(QPoint(50, 60)) + QPoint(6, 26));
}

void tst_ScreenCaptureWnd::theSameWindowServesOneCapture()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    QCOMPARE(ScreenCaptureWnd::screenCaptureWnd(), capture.window());
}

void tst_ScreenCaptureWnd::theNextCaptureGetsANewWindow()
{
    QPointer<ScreenCaptureWnd> first = ScreenCaptureWnd::screenCaptureWnd();
    first->reject();
    QVERIFY(!first->isVisible());
    deliver();
    QVERIFY(first.isNull());

    CaptureProbe second;
    QVERIFY(!second.region()->isVisible());
}

void tst_ScreenCaptureWnd::fullDesktopSavesAndRestoresTheGeometry()
{
    CaptureProbe capture;
    ScreenCaptureWnd* window = capture.window();
    const QRect normal(10, 20, 300, 200);
    window->setGeometry(normal);
    window->showFullDesktop(true);
    QCOMPARE(window->geometry(), QApplication::desktop()->geometry());
    window->setGeometry(5, 5, 50, 50);
    window->showFullDesktop(true);
    QCOMPARE(window->geometry(), QRect(5, 5, 50, 50));
    window->showFullDesktop(false);
    QCOMPARE(window->geometry(), normal);
    window->showFullDesktop(true);
    QCOMPARE(window->geometry(), QApplication::desktop()->geometry());
}

void tst_ScreenCaptureWnd::fullDesktopShowsTheWindowWhateverChanged()
{
    CaptureProbe capture;
    ScreenCaptureWnd* window = capture.window();
    window->setGeometry(10, 20, 300, 200);
    window->showFullDesktop(false);
    QVERIFY(window->isVisible());
    QCOMPARE(window->geometry(), QRect(10, 20, 300, 200));
    QTRY_VERIFY(window->isActiveWindow());
    QWidget other;
    other.show();
    other.activateWindow();
    QTRY_VERIFY(other.isActiveWindow());
    window->showFullDesktop(false);
    QTRY_VERIFY(window->isActiveWindow());
    window->hide();
    window->showFullDesktop(false);
    QVERIFY(window->isVisible());
}

void tst_ScreenCaptureWnd::captureEndsOnce_data()
{
    QTest::addColumn<Ending>("ending");
    QTest::addColumn<bool>("shown");
    QTest::addColumn<bool>("finished");
    QTest::newRow("accept()") << Accept << true << true;
    QTest::newRow("accept() before it was shown") << Accept << false << true;
    QTest::newRow("done") << Done << true << true;
    QTest::newRow("double-click while idle") << DoubleClick << true << true;
    QTest::newRow("reject()") << Reject << true << false;
    QTest::newRow("reject() before it was shown") << Reject << false << false;
    QTest::newRow("Escape") << Escape << true << false;
    QTest::newRow("right click while idle") << RightClickWhileIdle << true << false;
    QTest::newRow("closed by the window manager") << CloseByWindowManager << true << false;
}

void tst_ScreenCaptureWnd::captureEndsOnce()
{
    QFETCH(Ending, ending);
    QFETCH(bool, shown);
    QFETCH(bool, finished);
    CaptureProbe capture;
    ScreenCaptureWnd* window = capture.window();
    Receiver receiver;
    window->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    if (shown)
        window->showFullDesktop(true);

    switch (ending) {
    case Accept:
        window->accept();
        break;
    case Done:
        window->onBtnSend();
        break;
    case DoubleClick:
        capture.doubleClick(kInside);
        break;
    case Reject:
        window->reject();
        break;
    case Escape:
        QTest::keyClick(window, Qt::Key_Escape);
        break;
    case RightClickWhileIdle:
        capture.click(kInside, Qt::RightButton);
        break;
    case CloseByWindowManager:
        window->close();
        break;
    }

    QVERIFY(!capture.isGone());
    QVERIFY(!window->isVisible());
    QCOMPARE(window->result(), int(finished ? QDialog::Accepted : QDialog::Rejected));
    deliver();
    QVERIFY(capture.isGone());
    QCOMPARE(receiver.count, 1);
    QCOMPARE(receiver.finished, finished);
    QVERIFY(receiver.image.isNull());
}

void tst_ScreenCaptureWnd::resultArrivesAfterTheEndReturned()
{
    CaptureProbe capture;
    Receiver receiver;
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    capture.window()->showFullDesktop(true);
    capture.window()->accept();
    QCOMPARE(receiver.count, 0);
    deliver();
    QCOMPARE(receiver.count, 1);
}

void tst_ScreenCaptureWnd::endedWindowDeliversNothingMore()
{
    CaptureProbe capture;
    Receiver receiver;
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    capture.window()->showFullDesktop(true);
    capture.window()->accept();
    capture.window()->reject();
    capture.window()->accept();
    capture.click(kInside, Qt::RightButton);
    deliver();
    QCOMPARE(receiver.count, 1);
    QVERIFY(receiver.finished);
}

void tst_ScreenCaptureWnd::onlyTheLastReceiverGetsTheResult()
{
    CaptureProbe capture;
    Receiver first;
    Receiver second;
    capture.window()->connectTo(&first, SLOT(onCaptured(QImage, bool)));
    capture.window()->connectTo(&second, SLOT(onOther(QImage, bool)));
    capture.window()->connectTo(&second, SLOT(onCaptured(QImage, bool)));
    capture.window()->reject();
    deliver();
    QCOMPARE(first.count, 0);
    QCOMPARE(second.count, 1);
}

void tst_ScreenCaptureWnd::connectingTwiceDeliversOnce()
{
    CaptureProbe capture;
    Receiver receiver;
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    capture.window()->reject();
    deliver();
    QCOMPARE(receiver.count, 1);
}

void tst_ScreenCaptureWnd::nullReceiverOnlyDisconnects_data()
{
    QTest::addColumn<bool>("nullReceiver");
    QTest::addColumn<bool>("nullMember");
    QTest::newRow("receiver") << true << false;
    QTest::newRow("member") << false << true;
    QTest::newRow("both") << true << true;
}

void tst_ScreenCaptureWnd::nullReceiverOnlyDisconnects()
{
    QFETCH(bool, nullReceiver);
    QFETCH(bool, nullMember);
    CaptureProbe capture;
    Receiver receiver;
    const char* member = SLOT(onCaptured(QImage, bool));
    capture.window()->connectTo(&receiver, member);
    capture.window()->connectTo(nullReceiver ? nullptr : &receiver, nullMember ? nullptr : member);
    capture.window()->reject();
    deliver();
    QCOMPARE(receiver.count, 0);
}

void tst_ScreenCaptureWnd::receiverThatDiedIsForgotten()
{
    CaptureProbe capture;
    Receiver second;
    {
        Receiver first;
        capture.window()->connectTo(&first, SLOT(onCaptured(QImage, bool)));
    }
    capture.window()->connectTo(&second, SLOT(onCaptured(QImage, bool)));
    {
        Receiver third;
        capture.window()->connectTo(&third, SLOT(onCaptured(QImage, bool)));
        capture.window()->reject();
    }
    deliver();
    QCOMPARE(second.count, 0);
    QVERIFY(capture.isGone());
}

void tst_ScreenCaptureWnd::otherButtonsDoNotFinishByDoubleClick()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.doubleClick(kInside, Qt::RightButton);
    capture.doubleClick(kInside, Qt::MiddleButton);
    QVERIFY(capture.window()->isVisible());
}

void tst_ScreenCaptureWnd::failedGrabGivesNullPictures()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.drag(kFrom, kTo);
    QVERIFY(capture.region()->isVisible());
    QVERIFY(capture.window()->captureImage().isNull());
    QVERIFY(capture.window()->scribbledImage().isNull());

    // An empty surface, dimmed: black at alpha 100 where neither region nor loupe is painted.
    const QImage painted =
        capture.window()->grab().toImage().convertToFormat(QImage::Format_ARGB32);
    QCOMPARE(painted.pixelColor(kFarOutside), QColor(0, 0, 0, 100));
}

void tst_ScreenCaptureWnd::leftPressStartsAnInvalidHiddenRectangle()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    QSignalSpy changes(capture.region(), SIGNAL(rectChanged(QRect)));
    capture.press(kFrom);
    QVERIFY(!capture.region()->isVisible());
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.at(0).at(0).toRect(), QRect(kFrom, QSize()).normalized());
    capture.press(kTo);
    QCOMPARE(changes.count(), 1);
}

void tst_ScreenCaptureWnd::bandShowsFromThreePixelsOn_data()
{
    QTest::addColumn<QPoint>("to");
    QTest::addColumn<bool>("visible");
    QTest::newRow("no motion") << kFrom << false;
    QTest::newRow("2 wide, 2 high") << kFrom + QPoint(1, 1) << false;
    QTest::newRow("3 wide") << kFrom + QPoint(2, 0) << true;
    QTest::newRow("3 high") << kFrom + QPoint(0, 2) << true;
    QTest::newRow("1 left, 1 up") << kFrom - QPoint(1, 1) << false;
    QTest::newRow("2 left") << kFrom - QPoint(2, 0) << true;
    QTest::newRow("2 up") << kFrom - QPoint(0, 2) << true;
}

void tst_ScreenCaptureWnd::bandShowsFromThreePixelsOn()
{
    QFETCH(QPoint, to);
    QFETCH(bool, visible);
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.press(kFrom);
    capture.move(to);
    QCOMPARE(capture.region()->rect(), QRect(kFrom, to).normalized());
    QCOMPARE(capture.region()->isVisible(), visible);
}

void tst_ScreenCaptureWnd::bandRepaintsOnlyWhereItIs()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    QVERIFY(QTest::qWaitForWindowExposed(capture.window()));
    capture.press(kFrom);
    capture.move(kTo);
    QCoreApplication::processEvents();
    PaintCounter paints(*capture.window());
    capture.move(kTo + QPoint(10, 10));
    QTRY_VERIFY(paints.count > 0);
    QVERIFY(paints.area.contains(kTo));
    QVERIFY(!paints.area.contains(kFarOutside));
}

void tst_ScreenCaptureWnd::changedRectanglesArePaintedOnce_data()
{
    QTest::addColumn<QSize>("desktopSize");
    QTest::newRow("desktop as large as the window") << QSize(400, 300);
    QTest::newRow("smaller desktop") << QSize(250, 150);
}

// The size label is translucent, and darker where it is painted twice.
void tst_ScreenCaptureWnd::changedRectanglesArePaintedOnce()
{
    QFETCH(QSize, desktopSize);
    QImage desktop(desktopSize, QImage::Format_RGB32);
    desktop.fill(QColor(200, 150, 100));
    CaptureProbe capture;
    capture.window()->setGeometry(0, 0, 400, 300);
    ScreenCaptureWndAccess::setDesktop(capture.window(), desktop);
    const QRect region(QPoint(60, 60), QPoint(300, 200));
    capture.drag(region.topLeft(), region.bottomRight());

    QImage expected(400, 300, QImage::Format_RGB32);
    expected.fill(Qt::black);
    QPainter painter(&expected);
    painter.drawImage(0, 0, desktop);
    painter.fillRect(expected.rect(), QColor(0, 0, 0, 100));
    painter.drawImage(region.topLeft(), desktop.copy(region));
    capture.region()->render(painter);
    // With a hole, so that the rest is several rectangles.
    const QRect hole(350, 250, 20, 20);
    painter.fillRect(hole, Qt::black);
    painter.end();

    QImage actual(400, 300, QImage::Format_RGB32);
    actual.fill(Qt::black);
    capture.window()->render(&actual, QPoint(), QRegion(expected.rect()) - hole,
                             QWidget::RenderFlags());
    QCOMPARE(actual, expected);
}

void tst_ScreenCaptureWnd::bandStaysVisibleWhenDraggedBack()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.press(kFrom);
    capture.move(kTo);
    capture.move(kFrom);
    QVERIFY(capture.region()->isVisible());
    QCOMPARE(capture.region()->rect(), QRect(kFrom, kFrom));
}

void tst_ScreenCaptureWnd::dragInAnyDirectionIsNormalized()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.drag(kTo, kFrom);
    QCOMPARE(capture.region()->rect(), QRect(kTo, kFrom).normalized());
    QVERIFY(capture.region()->rect().width() > 0);
    QVERIFY(capture.region()->rect().height() > 0);
}

void tst_ScreenCaptureWnd::clickWithoutDragShowsTheToolBar()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    QVERIFY(capture.toolBar()->isHidden());
    capture.press(kFrom);
    QVERIFY(capture.toolBar()->isHidden());
    capture.release(kFrom);
    QVERIFY(!capture.region()->isVisible());
    QVERIFY(!capture.toolBar()->isHidden());
    // The region stands, so a second press does not start another one.
    capture.press(kTo);
    capture.move(kTo + QPoint(50, 50));
    QVERIFY(!capture.region()->isVisible());
    capture.release(kTo);
    capture.window()->accept();
}

void tst_ScreenCaptureWnd::releaseHidesTheLoupeInEveryState()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.release(kFrom);
    QVERIFY(capture.loupe()->isHidden());
    QVERIFY(capture.toolBar()->isHidden());
    capture.window()->reset();
    QVERIFY(!capture.loupe()->isHidden());
    capture.drag(kFrom, kTo);
    QVERIFY(capture.loupe()->isHidden());
}

void tst_ScreenCaptureWnd::pressInTheRegionShowsTheLoupeOnlyForHandles_data()
{
    QTest::addColumn<QPoint>("at");
    QTest::addColumn<bool>("loupe");
    QTest::newRow("left handle") << QPoint(99, 169) << true;
    QTest::newRow("right handle") << QPoint(299, 169) << true;
    QTest::newRow("top handle") << QPoint(199, 119) << true;
    QTest::newRow("bottom handle") << QPoint(199, 219) << true;
    QTest::newRow("top-left handle") << QPoint(99, 119) << true;
    QTest::newRow("bottom-right handle") << QPoint(299, 219) << true;
    QTest::newRow("inside") << kInside << false;
    QTest::newRow("border") << QPoint(130, 120) << false;
    QTest::newRow("outside") << kFarOutside << false;
}

void tst_ScreenCaptureWnd::pressInTheRegionShowsTheLoupeOnlyForHandles()
{
    QFETCH(QPoint, at);
    QFETCH(bool, loupe);
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.drag(kFrom, kTo);
    capture.press(at);
    QCOMPARE(!capture.loupe()->isHidden(), loupe);
    QCOMPARE(capture.loupe()->pos(), at + QPoint(6, 26));
    capture.press(at, Qt::RightButton);
    QCOMPARE(!capture.loupe()->isHidden(), loupe);
}

void tst_ScreenCaptureWnd::regionMovesAndResizesAfterItStands()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.drag(kFrom, kTo);
    capture.drag(kInside, kInside + QPoint(30, -20));
    QCOMPARE(capture.region()->rect(), kDragged.translated(30, -20));
    const QPoint corner = capture.region()->rect().bottomRight();
    capture.drag(corner, corner + QPoint(15, 25));
    QCOMPARE(capture.region()->rect(), kDragged.translated(30, -20).adjusted(0, 0, 15, 25));
}

void tst_ScreenCaptureWnd::loupeFollowsTheCursorOnlyWhileVisible()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.move(QPoint(40, 50), Qt::NoButton);
    QCOMPARE(capture.loupe()->pos(), QPoint(46, 76));
    capture.drag(kFrom, kTo);
    const QPoint left = capture.loupe()->pos();
    capture.move(QPoint(60, 70), Qt::NoButton);
    QCOMPARE(capture.loupe()->pos(), left);
}

// Whether the loupe shows the pixels around the pointer does not depend on an earlier region.
void tst_ScreenCaptureWnd::loupeForgetsTheHandleOfADroppedRegion()
{
    constexpr QPoint pointer(500, 400);
    const auto shownAfter = [pointer](bool handleDragged) {
        CaptureProbe capture;
        QImage desktop(800, 600, QImage::Format_RGB32);
        for (int y = 0; y < desktop.height(); ++y) {
            for (int x = 0; x < desktop.width(); ++x)
                desktop.setPixel(x, y, qRgb(x / 4, y / 4, x % 4 * 4 + y % 4));
        }
        ScreenCaptureWndAccess::setDesktop(capture.window(), desktop);
        capture.window()->showFullDesktop(true);
        capture.drag(QPoint(100, 100), QPoint(300, 250));
        if (handleDragged)
            capture.drag(QPoint(300, 250), QPoint(320, 270));
        capture.window()->reset();
        capture.move(pointer, Qt::NoButton);
        return capture.loupe()->grab().toImage();
    };
    QCOMPARE(shownAfter(true), shownAfter(false));
}

void tst_ScreenCaptureWnd::loupeFlipsAtTheEdges_data()
{
    QTest::addColumn<QPoint>("fromBottomRight");
    QTest::addColumn<QPoint>("offset");
    QTest::newRow("room for both") << QPoint(86, 106) << QPoint(6, 26);
    QTest::newRow("right edge") << QPoint(85, 106) << QPoint(-86, 26);
    QTest::newRow("bottom edge") << QPoint(86, 105) << QPoint(6, -106);
    QTest::newRow("corner") << QPoint(85, 105) << QPoint(-86, -106);
}

void tst_ScreenCaptureWnd::loupeFlipsAtTheEdges()
{
    QFETCH(QPoint, fromBottomRight);
    QFETCH(QPoint, offset);
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    const QSize size = capture.window()->size();
    const QPoint cursor = QPoint(size.width(), size.height()) - fromBottomRight;
    capture.move(cursor, Qt::NoButton);
    QCOMPARE(capture.loupe()->pos(), cursor + offset);
}

void tst_ScreenCaptureWnd::rightClick_data()
{
    QTest::addColumn<QPoint>("at");
    QTest::addColumn<bool>("drops");
    QTest::newRow("inside") << kInside << false;
    QTest::newRow("on the border band") << kFrom + QPoint(20, -4) << false;
    QTest::newRow("5 pixels outside") << kFrom + QPoint(20, -5) << true;
    QTest::newRow("far outside") << kFarOutside << true;
}

void tst_ScreenCaptureWnd::rightClick()
{
    QFETCH(QPoint, at);
    QFETCH(bool, drops);
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.drag(kFrom, kTo);
    capture.press(at, Qt::RightButton);
    QVERIFY(capture.region()->isVisible());
    capture.release(at, Qt::RightButton);
    QVERIFY(capture.window()->isVisible());
    QCOMPARE(capture.region()->isVisible(), !drops);
    QCOMPARE(capture.toolBar()->isHidden(), drops);
}

void tst_ScreenCaptureWnd::rightReleaseWhileSelectingDoesNothing()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.press(kFrom);
    capture.move(kTo);
    capture.release(kFarOutside, Qt::RightButton);
    QVERIFY(capture.window()->isVisible());
    QVERIFY(capture.region()->isVisible());
    capture.release(kTo);
    QVERIFY(!capture.toolBar()->isHidden());
}

void tst_ScreenCaptureWnd::toolBarFollowsTheRegion()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    QCOMPARE(capture.toolBar()->height(), 30);
    capture.toolBar()->resize(60, 30);
    capture.drag(kFrom, kTo);
    QCOMPARE(capture.toolBar()->pos(), QPoint(299 - 60, 219 + 6));
    capture.drag(kInside, kInside + QPoint(10, 20));
    QCOMPARE(capture.toolBar()->pos(), QPoint(309 - 60, 239 + 6));
    capture.toolBar()->resize(400, 30);
    capture.drag(kInside, kInside + QPoint(1, 0));
    QCOMPARE(capture.toolBar()->x(), 0);
}

void tst_ScreenCaptureWnd::toolBarStandsAboveALowRegion()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    const int last = capture.window()->rect().bottom();
    capture.drag(QPoint(100, 300), QPoint(299, last - 36));
    QCOMPARE(capture.toolBar()->y(), last - 36 + 6);
    capture.window()->reset();
    capture.drag(QPoint(100, 300), QPoint(299, last - 35));
    QCOMPARE(capture.toolBar()->y(), 300 - 36);
    capture.window()->reset();
    capture.drag(QPoint(100, 36), QPoint(299, last));
    QCOMPARE(capture.toolBar()->y(), 0);
}

void tst_ScreenCaptureWnd::undoDropsTheRegion()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.drag(kFrom, kTo);
    capture.window()->undo();
    QVERIFY(!capture.region()->isVisible());
    QVERIFY(capture.toolBar()->isHidden());
    QVERIFY(!capture.loupe()->isHidden());
    capture.drag(kFrom, kTo);
    QVERIFY(capture.region()->isVisible());
}

void tst_ScreenCaptureWnd::undoWhileIdleDoesNothing()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.release(kFrom);
    capture.window()->undo();
    QVERIFY(capture.loupe()->isHidden());
    QVERIFY(capture.window()->isVisible());
}

void tst_ScreenCaptureWnd::redoWithoutEditsDoesNothing()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.drag(kFrom, kTo);
    capture.window()->redo();
    QVERIFY(capture.region()->isVisible());
}

void tst_ScreenCaptureWnd::resetStartsOver()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.drag(kFrom, kTo);
    capture.region()->setEnabled(false);
    capture.window()->reset();
    QVERIFY(!capture.region()->isVisible());
    QVERIFY(capture.toolBar()->isHidden());
    QVERIFY(!capture.loupe()->isHidden());
    capture.drag(kFarOutside, kFarOutside + QPoint(40, 30));
    QCOMPARE(capture.region()->rect(), QRect(kFarOutside, QSize(41, 31)));
    const QPoint middle = capture.region()->rect().center();
    capture.drag(middle, middle - QPoint(5, 5));
    QCOMPARE(capture.region()->rect().topLeft(), kFarOutside - QPoint(5, 5));
}

void tst_ScreenCaptureWnd::resetBringsTheLoupeToTheCursor()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.drag(kFrom, kTo);
    const QPoint cursor(50, 60);
    QCursor::setPos(capture.window()->mapToGlobal(cursor));
    capture.window()->reset();
    QCOMPARE(capture.loupe()->pos(), cursor + QPoint(6, 26));
}

void tst_ScreenCaptureWnd::resetKeepsTheWindowOpen()
{
    CaptureProbe capture;
    Receiver receiver;
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    capture.window()->showFullDesktop(true);
    capture.window()->reset();
    deliver();
    QVERIFY(capture.window()->isVisible());
    QCOMPARE(receiver.count, 0);
}

void tst_ScreenCaptureWnd::saveWritesAndStartsOver()
{
    QTemporaryDir dir;
    CaptureProbe capture;
    Receiver receiver;
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    capture.window()->showFullDesktop(true);
    capture.drag(kFrom, kTo);

    QString title;
    QString suggested;
    QStringList filters;
    QString selected;
    QTimer::singleShot(0, qApp, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        title = dialog->windowTitle();
        suggested = dialog->selectedFiles().value(0);
        filters = dialog->nameFilters();
        selected = dialog->selectedNameFilter();
        dialog->findChild<QLineEdit*>()->setText(dir.filePath("a.png"));
        static_cast<QDialog*>(dialog)->accept();
    });
    capture.window()->save();
    deliver();

    QCOMPARE(title, QString("Save As"));
    QCOMPARE(suggested, QDir::currentPath() + "/untitled");
    QCOMPARE(filters, QStringList({"PNG (*.png)", "JPEG (*.jpg;*.jpeg)", "BMP (*.bmp)"}));
    QCOMPARE(selected, QString("PNG (*.png)"));
    QVERIFY(capture.window()->isVisible());
    QVERIFY(!capture.region()->isVisible());
    QVERIFY(!capture.loupe()->isHidden());
    QCOMPARE(receiver.count, 0);
}

void tst_ScreenCaptureWnd::saveCancelledLeavesEverything()
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    capture.drag(kFrom, kTo);
    QTimer::singleShot(
        0, qApp, [] { qobject_cast<QFileDialog*>(QApplication::activeModalWidget())->reject(); });
    capture.window()->save();
    QVERIFY(capture.region()->isVisible());
    QCOMPARE(capture.region()->rect(), kDragged);
    QVERIFY(!capture.toolBar()->isHidden());
    QVERIFY(capture.loupe()->isHidden());
}

void tst_ScreenCaptureWnd::eventFilterRequiresAnEvent()
{
    SKIP_WITHOUT_ASSERTIONS();
    CaptureProbe capture;
    QObject* filter = capture.window();
    QVERIFY(
        failedAssertion([&] { filter->eventFilter(filter, nullptr); }).contains("event != NULL"));
}

QTEST_MAIN(tst_ScreenCaptureWnd)
#include "tst_ScreenCaptureWnd.moc"
