// SPDX-License-Identifier: MIT
#include "CaptureProbe.h"
#include "NativeScreen.h"
#include "Overlay.h"
#include "Screen.h"

namespace
{

/// The factor with which the test runs.
qreal ratio()
{
    static const qreal r = qEnvironmentVariable("QT_SCALE_FACTOR", "1").toDouble();
    return r;
}

/// Each edge rounded to the nearest.
QRect physical(const QRect& r)
{
    const auto edge = [](int coordinate) { return qFloor(coordinate * ratio() + 0.5); };
    return {QPoint(edge(r.left()), edge(r.top())),
            QPoint(edge(r.right() + 1) - 1, edge(r.bottom() + 1) - 1)};
}

/// The coordinates of the window that lie on a pixel.
QPoint inWindow(const QPoint& pixel)
{
    const auto coordinate = [](int edge) {
        int result = 0;
        while (physical(QRect(0, 0, result + 1, 1)).right() < edge)
            ++result;
        return result;
    };
    return {coordinate(pixel.x()), coordinate(pixel.y())};
}

/// Knows on which physical pixel of the window the pointer was at its last move.
class PixelWatch : public QObject
{
public:
    PixelWatch() { QCoreApplication::instance()->installEventFilter(this); }
    QPoint last;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched->isWindowType() && event->type() == QEvent::MouseMove)
            last = (qtversions::posInWidget(*static_cast<QMouseEvent*>(event)) * ratio()).toPoint();
        return false;
    }
};

} // namespace

/// Captures at the scale factor of the environment, against the physical pixels of the screen, with
/// real input at physical pixels.
class tst_ScreenCaptureWnd_density : public CaptureTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void everyPixelIsDimmed();
    void whatIsSelectedIsShownAndDelivered_data();
    void whatIsSelectedIsShownAndDelivered();
    void movedAndResizedRegionLeavesNoTrace();
    void loupeShowsThePixelUnderThePointer_data();
    void loupeShowsThePixelUnderThePointer();
    void loupeShowsTheLastPixelOfADraggedEdge();
    void labelTellsTheSizeOfWhatIsDelivered();

private:
    void movePointerTo(const QPoint& pixel);
    void dragPixels(const QVector<QPoint>& path);
    /// What the region's edges enclose, as far as the screen goes.
    QRect selected() const;
    /// Without what is painted over the desktop: the bar, and the region's border and label.
    QImage plain(QImage screen) const;
    /// The dimmed desktop, and the region bright.
    QImage expected() const;
    void expectLoupe(const QPoint& pixel);

    NativeScreen m_native;
    QImage m_desktop;
    QScopedPointer<PixelWatch> m_watch;
};

void tst_ScreenCaptureWnd_density::initTestCase()
{
    QCOMPARE(QGuiApplication::platformName(), QString("xcb"));
    m_watch.reset(new PixelWatch);
    m_desktop = noise(m_native.size());
    m_native.show(m_desktop);
}

void tst_ScreenCaptureWnd_density::init()
{
    BehaviourTest::init();
    QTRY_COMPARE(m_native.shot(), m_desktop);
    m_receiver.reset(new Receiver);
    restart();
    QVERIFY(QTest::qWaitForWindowActive(window()));
    QCOMPARE(window()->screen()->devicePixelRatio(), ratio());
}

void tst_ScreenCaptureWnd_density::movePointerTo(const QPoint& pixel)
{
    xdotool(moveTo(pixel));
    QTRY_COMPARE(m_watch->last, pixel);
}

void tst_ScreenCaptureWnd_density::dragPixels(const QVector<QPoint>& path)
{
    movePointerTo(path.first());
    xdotool({"mousedown", "1"});
    for (int i = 1; i < path.size(); ++i)
        movePointerTo(path[i]);
    xdotool({"mouseup", "1"});
    QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::MouseButtons());
}

QRect tst_ScreenCaptureWnd_density::selected() const
{
    return physical(m_capture->region()->rect()) & m_desktop.rect();
}

QImage tst_ScreenCaptureWnd_density::plain(QImage screen) const
{
    const QRect region = m_capture->region()->rect();
    const QRect label(region.left(), region.top() - (region.top() < 28 ? 0 : 28), 100, 28);
    if (!m_capture->region()->isVisible())
        return screen;
    QRegion painted(physical(region.adjusted(-6, -6, 6, 6)));
    painted -= physical(region.adjusted(6, 6, -6, -6));
    painted += physical(label.adjusted(-1, -1, 1, 1));
    // Below 1, Qt paints other widgets unscaled.
    painted += m_capture->mainBar()->geometry();
    painted += physical(m_capture->mainBar()->geometry());
    for (const QRect& r : painted)
        screen = without(screen, r);
    return screen;
}

QImage tst_ScreenCaptureWnd_density::expected() const
{
    return drawnOn(dimmed(m_desktop), [this](QPainter& painter) {
        painter.drawImage(selected().topLeft(), m_desktop.copy(selected()));
    });
}

void tst_ScreenCaptureWnd_density::everyPixelIsDimmed()
{
    m_capture->loupe()->hide();
    QTRY_COMPARE(m_native.shot(), dimmed(m_desktop));
}

void tst_ScreenCaptureWnd_density::whatIsSelectedIsShownAndDelivered_data()
{
    QTest::addColumn<QPoint>("from");
    QTest::addColumn<QPoint>("to");
    QTest::newRow("region") << QPoint(301, 203) << QPoint(602, 454);
    QTest::newRow("backwards") << QPoint(602, 454) << QPoint(301, 203);
    QTest::newRow("small") << QPoint(150, 160) << QPoint(163, 177);
    QTest::newRow("everything") << QPoint(0, 0) << QPoint(1000, 702);
}

void tst_ScreenCaptureWnd_density::whatIsSelectedIsShownAndDelivered()
{
    QFETCH(QPoint, from);
    QFETCH(QPoint, to);
    dragPixels({from, (from + to) / 2, to});
    const QPoint first = inWindow(from);
    const QPoint last = inWindow(to);
    const QRect region = QRect(first, first) | QRect(last, last);
    QTRY_COMPARE(m_capture->region()->rect(), region);
    QVERIFY(selected().contains(from) && selected().contains(to));
    QTRY_COMPARE(plain(m_native.shot()), plain(expected()));

    const QImage cut = m_desktop.copy(selected());
    for (const bool ends : {false, true}) {
        QImage image = window()->captureImage();
        if (ends) {
            window()->accept();
            QTRY_COMPARE(m_receiver->count, 1);
            image = m_receiver->image;
        }
        QCOMPARE(image.devicePixelRatio(), ratio());
        image.setDevicePixelRatio(1);
        QCOMPARE(image.convertToFormat(QImage::Format_RGB32), cut);
    }
}

// Nor does what is painted in part differ from what is painted at once.
void tst_ScreenCaptureWnd_density::movedAndResizedRegionLeavesNoTrace()
{
    dragPixels({{201, 150}, {333, 221}, {471, 395}});
    for (int step = 0; step < 8; ++step) {
        const QRect r = selected();
        const QPoint corner = r.topLeft();
        const QPoint by(step % 3 * 17 - 13, step % 2 * 23 - 11);
        if (step % 2 == 0)
            dragPixels({r.center(), r.center() + by / 2, r.center() + by});
        else
            dragPixels({corner, corner + by / 3, corner + by});
        QTRY_COMPARE(plain(m_native.shot()), plain(expected()));
        const QImage inParts = m_native.shot();
        window()->update();
        QTRY_VERIFY(!window()->testAttribute(Qt::WA_PendingUpdate));
        QTRY_COMPARE(m_native.shot(), inParts);
    }
    window()->reset();
    m_capture->loupe()->hide();
    QTRY_COMPARE(m_native.shot(), dimmed(m_desktop));
}

void tst_ScreenCaptureWnd_density::expectLoupe(const QPoint& pixel)
{
    const QImage source = m_desktop.copy(QRect(pixel - QPoint(7, 7), QSize(16, 16)));
    const QRect place = physical(m_capture->loupe()->geometry());
    const auto shows = [&] {
        const QImage shown = m_native.shot().copy(place);
        // Within the loupe's frames.
        for (int y = 1; y < 15; ++y) {
            for (int x = 1; x < 15; ++x) {
                const QPoint middle(qFloor(5 * ratio() * (x + 0.5)),
                                    qFloor(5 * ratio() * (y + 0.5)));
                const bool crossHair = x == 7 || x == 8 || y == 7 || y == 8;
                if (!crossHair && shown.pixel(middle) != source.pixel(x, y))
                    return false;
            }
        }
        return true;
    };
    QTRY_VERIFY(shows());
}

void tst_ScreenCaptureWnd_density::loupeShowsThePixelUnderThePointer_data()
{
    QTest::addColumn<QPoint>("pixel");
    QTest::newRow("even") << QPoint(200, 100);
    QTest::newRow("odd") << QPoint(301, 203);
    QTest::newRow("beside") << QPoint(302, 204);
    QTest::newRow("at the far corner") << QPoint(987, 690);
}

void tst_ScreenCaptureWnd_density::loupeShowsThePixelUnderThePointer()
{
    QFETCH(QPoint, pixel);
    if (ratio() < 1)
        QSKIP("Qt paints children of the window unscaled");
    movePointerTo(QPoint(10, 10));
    movePointerTo(pixel);
    expectLoupe(pixel);
    // Also at once, before the pointer moves, where the window's size is not what places the loupe.
    if (pixel.x() > m_desktop.width() / 2)
        return;
    window()->hide();
    QTRY_COMPARE(m_native.shot(), m_desktop);
    restart();
    QVERIFY(QTest::qWaitForWindowActive(window()));
    expectLoupe(pixel);
}

void tst_ScreenCaptureWnd_density::loupeShowsTheLastPixelOfADraggedEdge()
{
    if (ratio() < 1)
        QSKIP("Qt paints children of the window unscaled");
    dragPixels({{301, 203}, {400, 300}, {602, 454}});
    // Below the bar there would be no loupe to be seen.
    m_capture->mainBar()->hide();
    const QRect r = selected();
    movePointerTo(QPoint(r.right() + 1, r.center().y()));
    xdotool({"mousedown", "1"});
    QTRY_VERIFY(m_capture->loupe()->isVisible());
    expectLoupe(QPoint(r.right(), m_watch->last.y()));
    xdotool({"mouseup", "1"});
}

void tst_ScreenCaptureWnd_density::labelTellsTheSizeOfWhatIsDelivered()
{
    if (ratio() < 1)
        QSKIP("Qt paints other widgets unscaled");
    dragPixels({{301, 203}, {400, 300}, {602, 454}});
    const QRect region = m_capture->region()->rect();
    const QRect label(region.topLeft() - QPoint(0, 28), QSize(100, 28));
    QImage image = dimmed(m_desktop);
    image.setDevicePixelRatio(ratio());
    QPainter painter(&image);
    painter.fillRect(label, QColor(0, 0, 0, 128));
    painter.setPen(Qt::white);
    painter.setFont(QFont("Courier New", 14));
    painter.drawText(label, Qt::AlignCenter,
                     QString("%1 x %2").arg(selected().width()).arg(selected().height()));
    painter.end();
    image.setDevicePixelRatio(1);
    // Beside the handles.
    const QRect text = physical(label.adjusted(14, 2, -2, -6));
    QTRY_COMPARE(m_native.shot().copy(text), image.copy(text));
}

QTEST_MAIN(tst_ScreenCaptureWnd_density)
#include "tst_ScreenCaptureWnd_density.moc"
