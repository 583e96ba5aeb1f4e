// SPDX-License-Identifier: MIT
#include "CaptureProbe.h"
#include "Grabs.h"
#include "Pictures.h"
#include "Skip.h"

#include <QDBusConnection>
#include <QScreen>
#include <QtMath>
#include <atomic>

namespace
{

std::atomic<int> s_buses{0};

} // namespace

// Stands before the function with which Qt connects to a bus, and counts the calls. There is no
// bus.
extern "C" void* dbus_bus_get_private(int /*type*/, void* /*error*/)
{
    ++s_buses;
    return nullptr;
}

namespace
{

bool isX11()
{
    return QGuiApplication::platformName() == "xcb";
}

QImage withRatio(QImage picture, qreal ratio)
{
    picture.setDevicePixelRatio(ratio);
    return picture;
}

QSize screenSize()
{
    return QGuiApplication::primaryScreen()->size();
}

QImage pixelsOf(const QImage& picture, QImage::Format format)
{
    return withRatio(picture, 1).convertToFormat(format);
}

} // namespace

/// Captures of a picture that the host hands in, and why the last capture had none.
class tst_ScreenCaptureWnd_given : public CaptureTest
{
    Q_OBJECT

private slots:
    // Each test begins its own capture.
    void init()
    {
        BehaviourTest::init();
        m_receiver.reset(new Receiver);
        s_grabs = 0;
        s_grabsFail = false;
    }
    void everyPixelIsDelivered_data();
    void everyPixelIsDelivered();
    void smallPictureStandsInTheMiddleOfTheScreen();
    void regionEndsWhereThePictureDoes();
    void sizeLabelTellsThePixels_data();
    void sizeLabelTellsThePixels();
    void loupeShowsThePixels();
    void annotationIsDelivered();
    void runningCaptureKeepsItsPicture();
    void hostGetsTheSignalAndTheNextCaptureIsOfTheDesktop();
    void nullPictureEndsTheCapture();
    void cancelledCaptureHasNotFailed();
    void keptWindowShownAgainHasNotFailed();
    void screensThatCannotBeGrabbedAreAFailure();
    void neitherScreensNorBusAreAskedForIt();

private:
    void startOf(const QImage& picture)
    {
        m_capture.reset();
        QVERIFY(ScreenCaptureWnd::captureOf(picture));
        m_capture.reset(new CaptureProbe);
        m_capture->start(*m_receiver);
    }
    /// Where a picture that needs so much room stands.
    static QRect inTheMiddle(const QSize& size)
    {
        const QSize screen = screenSize();
        return {
            QPoint(screen.width() / 2 - size.width() / 2, screen.height() / 2 - size.height() / 2),
            size};
    }
    /// One for each coordinate of the window.
    QImage shownPixels() const { return withRatio(painted(*window()), 1).scaled(window()->size()); }
    void selectEverything() const { m_capture->drag(window()->rect()); }
};

void tst_ScreenCaptureWnd_given::everyPixelIsDelivered_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<qreal>("ratio");
    for (const qreal ratio : {1.0, 1.5, 2.0}) {
        const QSize whole = screenSize() * ratio;
        QTest::addRow("small at %g", ratio) << noise(QSize(301, 203)) << ratio;
        QTest::addRow("as the desktop at %g", ratio) << noise(whole) << ratio;
        QTest::addRow("wider than the desktop at %g", ratio)
            << noise(whole + QSize(777, -301)) << ratio;
        QTest::addRow("higher than the desktop at %g", ratio)
            << noise(whole + QSize(-301, 777)) << ratio;
        QTest::addRow("far larger than the desktop at %g", ratio) << noise(whole * 2) << ratio;
    }
    QTest::newRow("one pixel wide") << noise(QSize(1, 300)) << 1.0;
    const QImage opaque = noise(QSize(301, 203));
    const QImage withAlpha = noise(QSize(301, 203), 2, QImage::Format_ARGB32);
    const QPair<const char*, QImage::Format> opaqueFormats[] = {
        {"16 bits", QImage::Format_RGB16},
        {"24 bits", QImage::Format_RGB888},
        {"indexed", QImage::Format_Indexed8},
        {"grey", QImage::Format_Grayscale8},
        {"black and white", QImage::Format_Mono}};
    for (const auto& [name, format] : opaqueFormats)
        QTest::newRow(name) << opaque.convertToFormat(format) << 1.0;
    const QPair<const char*, QImage::Format> formatsWithAlpha[] = {
        {"alpha", QImage::Format_ARGB32},
        {"premultiplied alpha", QImage::Format_ARGB32_Premultiplied},
        {"alpha in bytes", QImage::Format_RGBA8888},
        {"alpha of 64 bits", QImage::Format_RGBA64},
        {"indexed alpha", QImage::Format_Indexed8}};
    for (const auto& [name, format] : formatsWithAlpha)
        QTest::newRow(name) << withAlpha.convertToFormat(format) << 1.0;
}

void tst_ScreenCaptureWnd_given::everyPixelIsDelivered()
{
    QFETCH(QImage, picture);
    QFETCH(qreal, ratio);
    startOf(withRatio(picture, ratio));
    selectEverything();
    const QImage selected = window()->captureImage();
    window()->accept();
    deliver();
    QCOMPARE(m_receiver->count, 1);
    QVERIFY(m_receiver->finished);
    for (const QImage& image : {selected, m_receiver->image}) {
        QCOMPARE(image.hasAlphaChannel(), picture.hasAlphaChannel());
        QCOMPARE(pixelsOf(image, image.format()), pixelsOf(picture, image.format()));
        // What is too large is shown smaller.
        const QSizeF shown = QSizeF(picture.size()) / image.devicePixelRatio();
        QVERIFY(shown.width() < screenSize().width() + 0.01);
        QVERIFY(shown.height() < screenSize().height() + 0.01);
        if (picture.width() <= screenSize().width() * ratio &&
            picture.height() <= screenSize().height() * ratio)
            QCOMPARE(image.devicePixelRatio(), ratio);
    }
}

void tst_ScreenCaptureWnd_given::smallPictureStandsInTheMiddleOfTheScreen()
{
    const QImage picture = noise(QSize(301, 203));
    startOf(picture);
    m_capture->loupe()->hide();
    QCOMPARE(window()->size(), screenSize());
    const QRect place = inTheMiddle(picture.size());
    QImage around(screenSize(), QImage::Format_RGB32);
    around.fill(Qt::magenta);
    const QImage whole = drawnOn(dimmed(around), [&](QPainter& painter) {
        painter.drawImage(place.topLeft(), dimmed(picture));
    });
    QCOMPARE(shownPixels(), whole);

    const QRect part(40, 50, 100, 60);
    m_capture->drag(part.translated(place.topLeft()));
    QCOMPARE(window()->captureImage(), picture.copy(part));
    const QRect inside = part.adjusted(10, 10, -10, -10);
    QCOMPARE(shownPixels().copy(inside.translated(place.topLeft())), picture.copy(inside));
}

void tst_ScreenCaptureWnd_given::regionEndsWhereThePictureDoes()
{
    const QImage picture = noise(QSize(301, 203));
    startOf(picture);
    const QRect place = inTheMiddle(picture.size());
    const QRect half(place.topLeft() - QPoint(100, 100), place.center());
    m_capture->drag(half);
    QCOMPARE(m_capture->region()->rect(), half & place);
    QCOMPARE(window()->captureImage(), picture.copy((half & place).translated(-place.topLeft())));

    // Moved, it keeps its size.
    const QPoint middle = (half & place).center();
    m_capture->drag(middle, middle + QPoint(screenSize().width(), screenSize().height()));
    QCOMPARE(m_capture->region()->rect().size(), (half & place).size());
    QCOMPARE(m_capture->region()->rect().bottomRight(), place.bottomRight());
    // And resized.
    m_capture->drag(m_capture->region()->rect().topLeft() - QPoint(1, 1), QPoint(0, 0));
    QCOMPARE(m_capture->region()->rect(), place);
    QCOMPARE(window()->captureImage(), picture);
}

void tst_ScreenCaptureWnd_given::sizeLabelTellsThePixels_data()
{
    QTest::addColumn<qreal>("ratio");
    for (const qreal ratio : {1.0, 1.5, 2.0})
        QTest::addRow("%g", ratio) << ratio;
}

void tst_ScreenCaptureWnd_given::sizeLabelTellsThePixels()
{
    QFETCH(qreal, ratio);
    QImage picture(300, 180, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    startOf(withRatio(picture, ratio));
    selectEverything();
    const QPoint corner = m_capture->region()->rect().topLeft();
    const QRect label(corner - QPoint(0, 28), QSize(100, 28));
    QImage expected = painted(*window());
    QCOMPARE(expected.devicePixelRatio(), window()->devicePixelRatioF());
    expected.fill(Qt::magenta);
    QPainter painter(&expected);
    painter.fillRect(window()->rect(), QColor(0, 0, 0, 100));
    painter.fillRect(label, QColor(0, 0, 0, 128));
    painter.setPen(Qt::white);
    painter.setFont(QFont("Courier New", 14));
    painter.drawText(label, Qt::AlignCenter, "300 x 180");
    painter.end();
    // Beside the handles.
    const QRectF inside = label.adjusted(14, 2, -2, -6);
    const QRect text(inside.topLeft().toPoint() * expected.devicePixelRatio(),
                     inside.size().toSize() * expected.devicePixelRatio());
    QCOMPARE(painted(*window()).copy(text), expected.copy(text));
}

void tst_ScreenCaptureWnd_given::loupeShowsThePixels()
{
    const QImage picture = noise(QSize(380, 280));
    for (const int ratio : {1, 2}) {
        startOf(withRatio(picture, ratio));
        const QRect place = inTheMiddle(picture.size() / ratio);
        const QPoint under(50, 40);
        m_capture->hover(place.topLeft() + under);
        const QImage shown = m_capture->loupe()->grab().toImage();
        const QImage source = picture.copy(QRect(under * ratio - QPoint(7, 7), QSize(16, 16)));
        const qreal side = 5 * shown.devicePixelRatio();
        // Within the frames and beside the cross-hair.
        for (const QPoint block : {QPoint(1, 1), QPoint(14, 2), QPoint(6, 9), QPoint(12, 13)}) {
            const QPoint middle(qFloor(side * (block.x() + 0.5)), qFloor(side * (block.y() + 0.5)));
            QCOMPARE(QColor(shown.pixel(middle)), QColor(source.pixel(block)));
        }
    }
}

void tst_ScreenCaptureWnd_given::annotationIsDelivered()
{
    const QRect frame(20, 30, 120, 60);
    for (const qreal ratio : {1.0, 1.5, 2.0}) {
        const QImage picture = withRatio(noise(QSize(300, 210)), ratio);
        startOf(picture);
        selectEverything();
        m_capture->choose(Rectangle);
        m_capture->stroke(frame.topLeft(), frame.bottomRight());
        const QPen pen = m_capture->pen(Rectangle);
        window()->accept();
        deliver();
        const QImage expected = drawnOn(picture, [&](QPainter& painter) {
            painter.setPen(pen);
            painter.drawRect(frame);
        });
        QVERIFY(expected != picture);
        QCOMPARE(m_receiver->image.devicePixelRatio(), ratio);
        QCOMPARE(m_receiver->image, expected);
    }
}

void tst_ScreenCaptureWnd_given::runningCaptureKeepsItsPicture()
{
    const QImage picture = noise(QSize(301, 203));
    startOf(picture);
    QCOMPARE(ScreenCaptureWnd::captureOf(noise(QSize(50, 40), 2)), window());
    QCOMPARE(ScreenCaptureWnd::captureOf(QImage()), window());
    QCOMPARE(ScreenCaptureWnd::screenCaptureWnd(), window());
    selectEverything();
    QCOMPARE(window()->captureImage(), picture);
    QCOMPARE(ScreenCaptureWnd::failure(), QString());
}

void tst_ScreenCaptureWnd_given::hostGetsTheSignalAndTheNextCaptureIsOfTheDesktop()
{
    const QImage picture = noise(QSize(301, 203));
    startOf(picture);
    window()->reject();
    deliver();
    QCOMPARE(m_receiver->count, 1);
    QVERIFY(!m_receiver->finished);
    QVERIFY(m_receiver->image.isNull());
    QVERIFY(m_capture->isGone());
    restart();
    selectEverything();
    QCOMPARE(m_capture->region()->rect(), window()->rect());
}

void tst_ScreenCaptureWnd_given::nullPictureEndsTheCapture()
{
    startOf(QImage());
    QVERIFY(!window()->isVisible());
    QTRY_COMPARE(m_receiver->count, 1);
    QVERIFY(!m_receiver->finished);
    QVERIFY(m_receiver->image.isNull());
    QTRY_VERIFY(m_capture->isGone());
    QCOMPARE(ScreenCaptureWnd::failure(), QString("There is no picture."));
    startOf(noise(QSize(30, 20)));
    QCOMPARE(ScreenCaptureWnd::failure(), QString());
}

void tst_ScreenCaptureWnd_given::cancelledCaptureHasNotFailed()
{
    startOf(noise(QSize(30, 20)));
    window()->reject();
    deliver();
    QCOMPARE(ScreenCaptureWnd::failure(), QString());
    startOf(noise(QSize(30, 20)));
    window()->accept();
    deliver();
    QCOMPARE(ScreenCaptureWnd::failure(), QString());
}

void tst_ScreenCaptureWnd_given::keptWindowShownAgainHasNotFailed()
{
    startOf(noise(QSize(30, 20)));
    window()->setAttribute(Qt::WA_DeleteOnClose, false);
    emit qApp->screenAdded(QGuiApplication::primaryScreen());
    QCOMPARE(ScreenCaptureWnd::failure(), QString("The screens have changed."));
    window()->show();
    window()->reject();
    QCOMPARE(ScreenCaptureWnd::failure(), QString());
}

void tst_ScreenCaptureWnd_given::screensThatCannotBeGrabbedAreAFailure()
{
    if (!isX11())
        SKIP_BECAUSE("only on X11 grabs are made to fail");
    for (const bool fails : {false, true, false}) {
        s_grabsFail = fails;
        restart();
        QCOMPARE(ScreenCaptureWnd::failure(),
                 QString(fails ? "The screens cannot be grabbed." : ""));
        selectEverything();
        QCOMPARE(window()->captureImage().isNull(), fails);
        window()->reject();
        deliver();
        QCOMPARE(ScreenCaptureWnd::failure().isEmpty(), !fails);
    }
}

void tst_ScreenCaptureWnd_given::neitherScreensNorBusAreAskedForIt()
{
    // Qt itself may look for a bus, once.
    QWidget plain;
    plain.show();
    QVERIFY(QTest::qWaitForWindowExposed(&plain));
    const int before = s_buses;
    startOf(noise(screenSize()));
    QVERIFY(QTest::qWaitForWindowExposed(window()));
    selectEverything();
    window()->accept();
    deliver();
    QCOMPARE(m_receiver->count, 1);
    QCOMPARE(s_grabs, 0);
    // Nor is the bus for a grab.
    restart();
    QVERIFY(QTest::qWaitForWindowExposed(window()));
    QCOMPARE(s_grabs, isX11() ? 1 : 0);
    QCOMPARE(s_buses, before);
    // It would have been seen.
    QVERIFY(!QDBusConnection::connectToBus(QDBusConnection::SessionBus, "another").isConnected());
    QCOMPARE(s_buses, before + 1);
}

QTEST_MAIN(tst_ScreenCaptureWnd_given)
#include "tst_ScreenCaptureWnd_given.moc"
