// SPDX-License-Identifier: MIT
#include "CaptureProbe.h"
#include "Overlay.h"

#include <QTemporaryDir>

namespace
{

constexpr QPoint kFrom(100, 120);
constexpr QPoint kTo(299, 219);
const QRect kRegion(kFrom, kTo);
constexpr QPoint kInside(200, 170);
constexpr QPoint kFarOutside(500, 400);
constexpr QPoint kBesideLoupe(6, 26);
const QImage kDesktop = places(QSize(800, 800));

/// Whether the loupe shows the 16 x 16 pixels around `p`, five times magnified. The frames and the
/// cross-hair cover the outermost blocks and the two middle lines.
bool shows(MagnifierWidget* loupe, const QPoint& p)
{
    const QImage shown = loupe->grab().toImage();
    for (int row = 1; row < 15; ++row) {
        for (int column = 1; column < 15; ++column) {
            if (row == 7 || row == 8 || column == 7 || column == 8)
                continue;
            const QRgb source = kDesktop.pixel(p.x() - 7 + column, p.y() - 7 + row);
            if (shown.pixel(column * 5 + 2, row * 5 + 2) != source)
                return false;
        }
    }
    return true;
}

} // namespace

using Way = void (*)(const CaptureProbe& capture);
Q_DECLARE_METATYPE(Way)

/// The mouse selects a region: rubber band, loupe, handles, highlight, the place of the tool bar,
/// and the ways back to the start. The offscreen platform grabs nothing, so each test sets what was
/// grabbed.
class tst_ScreenCaptureWnd_selecting : public CaptureTest
{
    Q_OBJECT

private slots:
    void init();
    void pressStartsAnInvalidHiddenRectangle();
    void bandShowsFromThreePixelsOn_data();
    void bandShowsFromThreePixelsOn();
    void bandRepaintsOnlyWhereItIs();
    void regionIsPaintedAndCut_data();
    void regionIsPaintedAndCut();
    void regionMovesAndResizesAfterItStands();
    void clickWithoutDragShowsTheToolBar();
    void barStandsBelowTheRegionAndFollowsIt();
    void barStandsAboveALowRegion();

    void loupeFollowsTheCursorUntilTheRelease();
    void loupeShowsTheDraggedEdge_data();
    void loupeShowsTheDraggedEdge();
    void loupeForgetsTheHandleOfADroppedRegion();
    void loupeShowsWhatLiesWhereTheWindowStands();
    void loupeStaysAtThePointerWhenTheWindowMoves();
    void loupeFlipsAtTheEdges_data();
    void loupeFlipsAtTheEdges();

    void rightReleaseDropsTheRegionFromOutside_data();
    void rightReleaseDropsTheRegionFromOutside();
    void rightReleaseWhileSelectingDoesNothing();
    void startsOver_data();
    void startsOver();
    void undoAndRedoWithoutEditsDoNothing();

    void highlightedWindowIsShownUndimmedInAThickFrame();
    void hookFindsNoWindow();
    void clickTakesTheHighlightedWindow_data();
    void clickTakesTheHighlightedWindow();

private:
    QRect& highlight() const { return ScreenCaptureWndAccess::highlight(window()); }
    QImage shown() const;
};

void tst_ScreenCaptureWnd_selecting::init()
{
    CaptureTest::init();
    ScreenCaptureWndAccess::setDesktop(window(), kDesktop);
}

/// The window without its children, painted as several rectangles around a black hole.
QImage tst_ScreenCaptureWnd_selecting::shown() const
{
    QImage image(window()->size(), QImage::Format_RGB32);
    image.fill(Qt::black);
    const QRect hole(350, 250, 20, 20);
    window()->render(&image, QPoint(), QRegion(image.rect()) - hole, QWidget::RenderFlags());
    return image;
}

void tst_ScreenCaptureWnd_selecting::pressStartsAnInvalidHiddenRectangle()
{
    QSignalSpy changes(m_capture->region(), SIGNAL(rectChanged(QRect)));
    m_capture->press(kFrom);
    QVERIFY(!m_capture->region()->isVisible());
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.at(0).at(0).toRect(), QRect(kFrom - QPoint(2, 2), kFrom));
    m_capture->press(kTo);
    QCOMPARE(changes.count(), 1);
}

void tst_ScreenCaptureWnd_selecting::bandShowsFromThreePixelsOn_data()
{
    QTest::addColumn<QPoint>("way");
    QTest::addColumn<QRect>("band");
    QTest::addColumn<bool>("visible");
    QTest::newRow("no motion") << QPoint(0, 0) << QRect(0, 0, 1, 1) << false;
    QTest::newRow("2 wide, 2 high") << QPoint(1, 1) << QRect(0, 0, 2, 2) << false;
    QTest::newRow("3 wide") << QPoint(2, 0) << QRect(0, 0, 3, 1) << true;
    QTest::newRow("3 high") << QPoint(0, 2) << QRect(0, 0, 1, 3) << true;
    QTest::newRow("1 left, 1 up") << QPoint(-1, -1) << QRect(0, 0, 0, 0) << false;
    QTest::newRow("2 left") << QPoint(-2, 0) << QRect(-2, 0, 3, 1) << true;
    QTest::newRow("2 up") << QPoint(0, -2) << QRect(0, -2, 1, 3) << true;
    QTest::newRow("far left and up") << QPoint(-70, -50) << QRect(-70, -50, 71, 51) << true;
}

void tst_ScreenCaptureWnd_selecting::bandShowsFromThreePixelsOn()
{
    QFETCH(QPoint, way);
    QFETCH(QRect, band);
    QFETCH(bool, visible);
    m_capture->press(kFrom);
    m_capture->move(kFrom + way);
    QCOMPARE(m_capture->region()->rect(), band.translated(kFrom));
    QCOMPARE(m_capture->region()->isVisible(), visible);
    // Once shown it stays.
    m_capture->move(kTo);
    m_capture->move(kFrom + way);
    QVERIFY(m_capture->region()->isVisible());
    QCOMPARE(m_capture->region()->rect(), band.translated(kFrom));
}

void tst_ScreenCaptureWnd_selecting::bandRepaintsOnlyWhereItIs()
{
    QVERIFY(QTest::qWaitForWindowExposed(window()));
    m_capture->press(kFrom);
    m_capture->move(kTo);
    QCoreApplication::processEvents();
    PaintCounter paints(*window());
    m_capture->move(kTo + QPoint(10, 10));
    QTRY_VERIFY(paints.count > 0);
    QVERIFY(paints.area.contains(kTo));
    QVERIFY(!paints.area.contains(kFarOutside));
}

void tst_ScreenCaptureWnd_selecting::regionIsPaintedAndCut_data()
{
    QTest::addColumn<QSize>("desktopSize");
    QTest::addColumn<QPoint>("end");
    QTest::addColumn<QRect>("region");
    const QSize all(400, 300);
    const QPoint middle(280, 200);
    QTest::newRow("usual") << all << middle << QRect(kFrom, middle);
    QTest::newRow("smaller desktop") << QSize(250, 150) << middle << QRect(kFrom, middle);
    // The region may reach one pixel beyond.
    QTest::newRow("dragged beyond the window")
        << all << QPoint(450, 350) << QRect(kFrom, QPoint(400, 300));
    QTest::newRow("no width") << all << QPoint(99, 240) << QRect(100, 120, 0, 121);
    QTest::newRow("neither") << all << QPoint(99, 119) << QRect(100, 120, 0, 0);
}

// The size label is translucent, and darker where it is painted twice.
void tst_ScreenCaptureWnd_selecting::regionIsPaintedAndCut()
{
    QFETCH(QSize, desktopSize);
    QFETCH(QPoint, end);
    QFETCH(QRect, region);
    const QImage desktop = noise(desktopSize);
    window()->setGeometry(0, 0, 400, 300);
    ScreenCaptureWndAccess::setDesktop(window(), desktop);
    m_capture->drag({kFrom, kFrom + QPoint(90, 90), end});
    QCOMPARE(m_capture->region()->rect(), region);

    QImage expected = overlayWith(desktop, region, window()->size());
    QPainter(&expected).fillRect(350, 250, 20, 20, Qt::black);
    QCOMPARE(shown(), expected);
    const QImage cut = region.isEmpty() ? QImage() : desktop.copy(region);
    QCOMPARE(window()->captureImage(), cut);
    QCOMPARE(window()->scribbledImage(), cut);
}

void tst_ScreenCaptureWnd_selecting::regionMovesAndResizesAfterItStands()
{
    m_capture->drag(kRegion);
    m_capture->drag(kInside, kInside + QPoint(30, -20));
    QCOMPARE(m_capture->region()->rect(), kRegion.translated(30, -20));
    const QPoint corner = m_capture->region()->rect().bottomRight();
    m_capture->drag(corner, corner + QPoint(15, 25));
    QCOMPARE(m_capture->region()->rect(), kRegion.translated(30, -20).adjusted(0, 0, 15, 25));
    m_capture->move(kInside, Qt::NoButton);
    QCOMPARE(window()->cursor().shape(), Qt::SizeAllCursor);
    m_capture->move(kFarOutside, Qt::NoButton);
    QCOMPARE(window()->cursor().shape(), Qt::BitmapCursor);
}

void tst_ScreenCaptureWnd_selecting::clickWithoutDragShowsTheToolBar()
{
    QVERIFY(m_capture->mainBar()->isHidden());
    m_capture->press(kFrom);
    QVERIFY(m_capture->mainBar()->isHidden());
    m_capture->release(kFrom);
    QVERIFY(m_capture->mainBar()->isVisible());
    QVERIFY(m_capture->subBar()->isHidden());
    // The region stands, so a second press does not start another one.
    m_capture->drag(kTo, kTo + QPoint(50, 50));
    QVERIFY(!m_capture->region()->isVisible());
    QVERIFY(window()->captureImage().isNull());
}

void tst_ScreenCaptureWnd_selecting::barStandsBelowTheRegionAndFollowsIt()
{
    QWidget* bar = m_capture->mainBar();
    m_capture->drag(QPoint(300, 100), QPoint(699, 299));
    QCOMPARE(bar->pos(), QPoint(699 - bar->width(), 299 + 6));
    m_capture->drag(QPoint(500, 200), QPoint(510, 220));
    QCOMPARE(bar->pos(), QPoint(709 - bar->width(), 319 + 6));
    m_capture->drag(QPoint(500, 200), QPoint(100, 200));
    QCOMPARE(bar->pos(), QPoint(qMax(0, 309 - bar->width()), 319 + 6));
    bar->resize(400, 30);
    m_capture->drag(QPoint(100, 200), QPoint(101, 200));
    QCOMPARE(bar->x(), 0);
}

void tst_ScreenCaptureWnd_selecting::barStandsAboveALowRegion()
{
    const int last = window()->rect().bottom();
    const auto yWith = [this](int top, int bottom) {
        window()->reset();
        m_capture->drag(QPoint(100, top), QPoint(299, bottom));
        return m_capture->mainBar()->y();
    };
    QCOMPARE(yWith(300, last - 36), last - 36 + 6);
    QCOMPARE(yWith(300, last - 35), 300 - 36);
    QCOMPARE(yWith(37, last), 1);
    QCOMPARE(yWith(36, last), 0);
    QCOMPARE(yWith(0, last), 0);
}

void tst_ScreenCaptureWnd_selecting::loupeFollowsTheCursorUntilTheRelease()
{
    MagnifierWidget* loupe = m_capture->loupe();
    m_capture->hover(kFrom);
    QCOMPARE(loupe->pos(), kFrom + kBesideLoupe);
    QVERIFY(shows(loupe, kFrom));
    QCOMPARE(loupe->grab().toImage().pixelColor(40, 40), kSelectionColor);
    m_capture->press(kFrom);
    m_capture->move(kTo);
    QVERIFY(shows(loupe, kTo));
    QCOMPARE(loupe->pos(), kTo + kBesideLoupe);
    m_capture->release(kTo);
    QVERIFY(loupe->isHidden());
    m_capture->hover(kFarOutside);
    QCOMPARE(loupe->pos(), kTo + kBesideLoupe);
    // Also while nothing is selected.
    window()->reset();
    QVERIFY(loupe->isVisible());
    m_capture->release(kFrom);
    QVERIFY(loupe->isHidden());
    QVERIFY(m_capture->mainBar()->isHidden());
}

void tst_ScreenCaptureWnd_selecting::loupeShowsTheDraggedEdge_data()
{
    QTest::addColumn<QPoint>("press");
    QTest::addColumn<QPoint>("shown");
    const QRect r = kRegion;
    const QPoint middle = r.topLeft() - QPoint(1, 1) + QPoint(r.width() / 2, r.height() / 2);
    const QPoint off(2, 3);
    const QPoint p = middle + off;
    QTest::newRow("left") << QPoint(r.left() + 1, p.y()) << QPoint(r.left(), p.y());
    QTest::newRow("right") << QPoint(r.right() + 2, p.y()) << QPoint(r.right(), p.y());
    QTest::newRow("top") << QPoint(p.x(), r.top() + 2) << QPoint(p.x(), r.top());
    QTest::newRow("bottom") << QPoint(p.x(), r.bottom() + 3) << QPoint(p.x(), r.bottom());
    QTest::newRow("top-left") << r.topLeft() + off << r.topLeft();
    QTest::newRow("top-right") << r.topRight() + off << r.topRight();
    QTest::newRow("bottom-left") << r.bottomLeft() + off << r.bottomLeft();
    QTest::newRow("bottom-right") << r.bottomRight() + off << r.bottomRight();
    QTest::newRow("inside: hidden") << kInside << QPoint();
    QTest::newRow("border: hidden") << QPoint(130, 120) << QPoint();
    QTest::newRow("outside: hidden") << kFarOutside << QPoint();
}

void tst_ScreenCaptureWnd_selecting::loupeShowsTheDraggedEdge()
{
    QFETCH(QPoint, press);
    QFETCH(QPoint, shown);
    m_capture->drag(kRegion);
    m_capture->press(press);
    for (int button = 0; button < 2; ++button) {
        QCOMPARE(m_capture->loupe()->isVisible(), !shown.isNull());
        QCOMPARE(m_capture->loupe()->pos(), press + kBesideLoupe);
        QVERIFY(shown.isNull() || shows(m_capture->loupe(), shown));
        // Nothing changes with the other button.
        m_capture->press(press, Qt::RightButton);
    }
}

// Whether the loupe shows the pixels around the pointer does not depend on an earlier region.
void tst_ScreenCaptureWnd_selecting::loupeForgetsTheHandleOfADroppedRegion()
{
    m_capture->drag(kRegion);
    m_capture->drag(kTo, kTo + QPoint(20, 20));
    window()->reset();
    m_capture->hover(kFarOutside);
    QVERIFY(shows(m_capture->loupe(), kFarOutside));
}

void tst_ScreenCaptureWnd_selecting::loupeShowsWhatLiesWhereTheWindowStands()
{
    constexpr QPoint kMoved(-37, 53);
    window()->move(kMoved);
    QCOMPARE(window()->mapToGlobal(QPoint()), kMoved);
    m_capture->press(kFrom);
    m_capture->move(kTo);
    QVERIFY(shows(m_capture->loupe(), kTo + kMoved));
    QCOMPARE(m_capture->loupe()->pos(), kTo + kBesideLoupe);
}

void tst_ScreenCaptureWnd_selecting::loupeStaysAtThePointerWhenTheWindowMoves()
{
    constexpr QPoint kMoved(-37, 53);
    QCursor::setPos(kTo);
    QTRY_COMPARE(m_capture->loupe()->pos(), kTo + kBesideLoupe);
    window()->move(kMoved);
    QTRY_COMPARE(m_capture->loupe()->pos(), kTo - kMoved + kBesideLoupe);
    QVERIFY(shows(m_capture->loupe(), kTo));
}

void tst_ScreenCaptureWnd_selecting::loupeFlipsAtTheEdges_data()
{
    QTest::addColumn<QPoint>("fromBottomRight");
    QTest::addColumn<QPoint>("offset");
    QTest::newRow("room for both") << QPoint(86, 106) << QPoint(6, 26);
    QTest::newRow("right edge") << QPoint(85, 106) << QPoint(-86, 26);
    QTest::newRow("bottom edge") << QPoint(86, 105) << QPoint(6, -106);
    QTest::newRow("corner") << QPoint(85, 105) << QPoint(-86, -106);
}

void tst_ScreenCaptureWnd_selecting::loupeFlipsAtTheEdges()
{
    QFETCH(QPoint, fromBottomRight);
    QFETCH(QPoint, offset);
    const QPoint cursor = QPoint(window()->width(), window()->height()) - fromBottomRight;
    m_capture->hover(cursor);
    QCOMPARE(m_capture->loupe()->pos(), cursor + offset);
}

void tst_ScreenCaptureWnd_selecting::rightReleaseDropsTheRegionFromOutside_data()
{
    QTest::addColumn<QPoint>("at");
    QTest::addColumn<bool>("drops");
    QTest::newRow("inside") << kInside << false;
    QTest::newRow("on the border band") << kFrom + QPoint(20, -4) << false;
    QTest::newRow("5 pixels outside") << kFrom + QPoint(20, -5) << true;
    QTest::newRow("far outside") << kFarOutside << true;
}

void tst_ScreenCaptureWnd_selecting::rightReleaseDropsTheRegionFromOutside()
{
    QFETCH(QPoint, at);
    QFETCH(bool, drops);
    m_capture->drag(kRegion);
    m_capture->press(at, Qt::RightButton);
    QVERIFY(m_capture->region()->isVisible());
    m_capture->release(at, Qt::RightButton);
    QVERIFY(window()->isVisible());
    QCOMPARE(m_capture->region()->isVisible(), !drops);
    QCOMPARE(m_capture->mainBar()->isHidden(), drops);
}

void tst_ScreenCaptureWnd_selecting::rightReleaseWhileSelectingDoesNothing()
{
    m_capture->press(kFrom);
    m_capture->move(kTo);
    m_capture->release(kFarOutside, Qt::RightButton);
    QVERIFY(window()->isVisible());
    QVERIFY(m_capture->region()->isVisible());
    m_capture->release(kTo);
    QVERIFY(m_capture->mainBar()->isVisible());
}

void tst_ScreenCaptureWnd_selecting::startsOver_data()
{
    QTest::addColumn<Way>("way");
    const auto row = [](const char* name, Way way) { QTest::newRow(name) << way; };
    using Probe = CaptureProbe;
    row("reset()", [](const Probe& c) { c.window()->reset(); });
    row("undo of a bare region", [](const Probe& c) { c.window()->undo(); });
    row("undo past the first edit", [](const Probe& c) {
        c.choose(Arrow);
        c.choose(Scribble);
        c.stroke(QPoint(10, 10), QPoint(50, 50));
        c.window()->undo();
        QVERIFY(c.button(Redo)->isEnabled());
        c.window()->undo();
    });
    row("undo in the middle of the first shape", [](const Probe& c) {
        c.choose(Rectangle);
        const Mouse mouse(c.canvas());
        mouse.press(QPoint(30, 30));
        mouse.move(QPoint(90, 80));
        c.window()->undo();
    });
    row("undo of the first shape in its frame", [](const Probe& c) {
        c.choose(Rectangle);
        c.stroke(QPoint(10, 10), QPoint(50, 50));
        c.window()->undo();
    });
    row("right click while annotating", [](const Probe& c) {
        c.choose(Rectangle);
        c.stroke(QPoint(10, 10), QPoint(50, 50));
        c.click(kFarOutside, Qt::RightButton);
    });
    row("saved", [](const Probe& c) {
        const QTemporaryDir directory;
        c.choose(Ellipse);
        c.saveAs(directory.filePath("picture.png"));
    });
    row("a setting was reached by the keyboard", [](const Probe& c) {
        c.choose(Mosaic);
        c.blurSlider()->setFocus();
        c.window()->reset();
    });
}

// All is as at first, and the next region knows nothing of this one.
void tst_ScreenCaptureWnd_selecting::startsOver()
{
    QFETCH(Way, way);
    const QPoint cursor(50, 60);
    m_capture->drag(kRegion);
    highlight() = kRegion;
    QCursor::setPos(window()->mapToGlobal(cursor));
    PaintCounter paints(*window());
    way(*m_capture);
    QVERIFY(window()->isVisible());
    QCOMPARE(ScreenCaptureWndAccess::state(*window()), 0);
    QVERIFY(!m_capture->region()->isVisible());
    QVERIFY(m_capture->mainBar()->isHidden());
    QVERIFY(m_capture->subBar()->isHidden());
    QVERIFY(!m_capture->canvas() || m_capture->canvas()->isHidden());
    QCOMPARE(m_capture->checkedTools(), Tools());
    QVERIFY(!m_capture->button(Redo)->isEnabled());
    QVERIFY(highlight().isNull());
    QVERIFY(m_capture->loupe()->isVisible());
    QCOMPARE(m_capture->loupe()->pos(), cursor + kBesideLoupe);
    QVERIFY(window()->scribbledImage().isNull());
    QTRY_VERIFY(paints.area.contains(kFarOutside));

    const ScribbleArea* canvas = m_capture->canvas();
    const QRect second(QPoint(320, 230), QPoint(419, 299));
    m_capture->drag(second);
    QCOMPARE(m_capture->region()->rect(), second);
    m_capture->drag(second.center(), second.center() - QPoint(5, 5));
    QCOMPARE(m_capture->region()->rect(), second.translated(-5, -5));
    const QImage selected = kDesktop.copy(second.translated(-5, -5));
    QCOMPARE(window()->scribbledImage(), selected);
    QVERIFY(m_capture->subBar()->isHidden());
    m_capture->choose(Rectangle);
    QVERIFY(m_capture->subBar()->isVisible());
    QVERIFY(!canvas || canvas == m_capture->canvas());
    QCOMPARE(m_capture->canvas()->geometry(), second.translated(-5, -5));
    QCOMPARE(m_capture->canvas()->image(), selected);
    QVERIFY(!m_capture->canvas()->canUndo());
    QCOMPARE(m_capture->checkedTools(), Tools{Rectangle});
    // Committing draws no shape of the earlier region; the corner is the shape tool's own.
    const QRect besideCorner(10, 10, 80, 50);
    QCOMPARE(window()->scribbledImage().copy(besideCorner), selected.copy(besideCorner));
    deliver();
    QCOMPARE(m_receiver->count, 0);
}

void tst_ScreenCaptureWnd_selecting::undoAndRedoWithoutEditsDoNothing()
{
    m_capture->release(kFrom);
    window()->undo();
    QVERIFY(m_capture->loupe()->isHidden());
    QVERIFY(window()->isVisible());
    m_capture->drag(kRegion);
    window()->redo();
    QVERIFY(m_capture->region()->isVisible());
}

// The hook that finds such a window never finds one, so this sets what it would have found.
void tst_ScreenCaptureWnd_selecting::highlightedWindowIsShownUndimmedInAThickFrame()
{
    window()->setGeometry(0, 0, 400, 300);
    highlight() = QRect(-50, 40, 120, 90);
    const QRect frame(QPoint(0, 42), QPoint(67, 127));
    const QImage expected =
        drawnOn(dimmed(kDesktop).copy(0, 0, 400, 300), [&frame](QPainter& painter) {
            painter.drawImage(frame.topLeft(), kDesktop.copy(frame));
            painter.setPen(QPen(kSelectionColor, 4.0, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
            painter.drawRect(frame);
            painter.fillRect(350, 250, 20, 20, Qt::black);
        });
    QCOMPARE(shown(), expected);
}

void tst_ScreenCaptureWnd_selecting::hookFindsNoWindow()
{
    QVERIFY(highlight().isNull());
    highlight() = kRegion;
    m_capture->hover(kInside);
    QVERIFY(highlight().isNull());
}

void tst_ScreenCaptureWnd_selecting::clickTakesTheHighlightedWindow_data()
{
    QTest::addColumn<QPoint>("way");
    QTest::addColumn<bool>("dropped");
    QTest::newRow("click") << QPoint(0, 0) << false;
    QTest::newRow("drag that is too short") << QPoint(1, 1) << false;
    QTest::newRow("wide drag") << QPoint(2, 0) << true;
    QTest::newRow("high drag") << QPoint(0, 2) << true;
}

void tst_ScreenCaptureWnd_selecting::clickTakesTheHighlightedWindow()
{
    QFETCH(QPoint, way);
    QFETCH(bool, dropped);
    highlight() = kRegion;
    PaintCounter paints(*window());
    m_capture->press(kInside);
    m_capture->move(kInside + way);
    QCOMPARE(highlight().isNull(), dropped);
    if (dropped)
        QTRY_VERIFY(paints.area.contains(kFarOutside));
    m_capture->release(kInside + way);
    QCOMPARE(m_capture->region()->rect(), dropped ? QRect(kInside, kInside + way) : kRegion);
    QVERIFY(m_capture->region()->isVisible());
    QVERIFY(highlight().isNull());
}

QTEST_MAIN(tst_ScreenCaptureWnd_selecting)
#include "tst_ScreenCaptureWnd_selecting.moc"
