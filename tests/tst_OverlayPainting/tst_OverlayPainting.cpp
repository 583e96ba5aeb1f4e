// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "OverlayPainting.h"
#include "Pictures.h"

#include <QtTest>

namespace
{

constexpr QSize kWindow(90, 70);
const QRect kRegion(QPoint(20, 10), QPoint(59, 49));
const QColor kFrameColor(1, 200, 100);

using Canvas = std::optional<QImage>;

/// All of the window and parts of it, some at its edges.
QVector<QRect> changedRects()
{
    const QRect window(QPoint(), kWindow);
    QVector<QRect> rects{window};
    QRandomGenerator random(1);
    for (int i = 0; i < 40; ++i)
        rects << (window & QRect(random.bounded(-20, 80), random.bounded(-20, 60),
                                 random.bounded(25, 70), random.bounded(25, 50)));
    return rects;
}

/// Each edge rounded to the nearest.
QRect physical(const QRect& r, qreal ratio)
{
    const auto edge = [ratio](int coordinate) { return qFloor(coordinate * ratio + 0.5); };
    return {QPoint(edge(r.left()), edge(r.top())),
            QPoint(edge(r.right() + 1) - 1, edge(r.bottom() + 1) - 1)};
}

/// What `draw` paints in `changed` of an otherwise magenta window. The painter is one as Qt gives
/// it to the window.
template <typename Draw>
QImage paintedIn(const QRect& changed, qreal ratio, Draw draw)
{
    QImage window(physical(QRect(QPoint(), kWindow), ratio).size(), QImage::Format_RGB32);
    window.setDevicePixelRatio(ratio);
    window.fill(Qt::magenta);
    QImage image = drawnOn(window, [&](QPainter& painter) {
        painter.setClipRect(changed);
        draw(painter, changed);
    });
    image.setDevicePixelRatio(1);
    return image;
}

/// Compares the layers of `scene` with what `draw` paints pixel on pixel, whatever changed.
template <typename Draw>
void compareLayers(const overlay::Scene& scene, Draw draw)
{
    const qreal ratio = scene.desktop.ratio;
    for (const QRect& changed : changedRects()) {
        const QImage shown = paintedIn(changed, ratio, [&](QPainter& painter, const QRect& area) {
            overlay::paintSurround(painter, scene, area);
            overlay::paintRegion(painter, scene);
        });
        QImage expected(shown.size(), QImage::Format_RGB32);
        expected.fill(Qt::magenta);
        const QRect pixels = physical(changed, ratio);
        QCOMPARE(shown, drawnOn(expected, [&](QPainter& painter) {
                     painter.setClipRect(pixels);
                     draw(painter, pixels);
                 }));
    }
}

/// The layers one over the other: the picture, the dimming, the region.
void paintPlainly(QPainter& painter, const QImage& desktop, const QRect& region,
                  const Canvas& canvas, const QPoint& desktopPos)
{
    painter.drawImage(desktopPos, desktop);
    painter.fillRect(painter.window(), QColor(0, 0, 0, 100));
    if (canvas)
        painter.drawImage(region.topLeft(), *canvas);
    else if (!region.isEmpty())
        painter.drawImage(region.topLeft(), desktop.copy(region.translated(-desktopPos)));
}

overlay::Scene sceneOf(const QImage& desktop, const QRect& region = QRect(),
                       const Canvas& canvas = {}, const QPoint& desktopPos = QPoint(),
                       qreal ratio = 1)
{
    return {{desktop, overlay::dimmed(desktop), -desktopPos, ratio},
            QRect(QPoint(), kWindow),
            region,
            canvas};
}

} // namespace

class tst_OverlayPainting : public BehaviourTest
{
    Q_OBJECT

private slots:
    void dimmedPictureIsBlackAtAlpha100();
    void layersArePaintedInTheChangedRectangle_data();
    void layersArePaintedInTheChangedRectangle();
    void canvasOfAnotherRatioFillsTheRegion_data();
    void canvasOfAnotherRatioFillsTheRegion();
    void eachPixelIsPaintedOnce_data();
    void eachPixelIsPaintedOnce();
    void highlightIsBrightInAThickFrame_data();
    void highlightIsBrightInAThickFrame();
};

void tst_OverlayPainting::dimmedPictureIsBlackAtAlpha100()
{
    const QImage picture = noise(kWindow);
    QCOMPARE(overlay::dimmed(picture), dimmed(picture));
    QVERIFY(picture == noise(kWindow));
    QVERIFY(overlay::dimmed(QImage()).isNull());
}

void tst_OverlayPainting::layersArePaintedInTheChangedRectangle_data()
{
    QTest::addColumn<QSize>("desktop");
    QTest::addColumn<QRect>("region");
    QTest::addColumn<QSize>("canvas");
    const QSize none;
    const QSize small(50, 40);
    QTest::newRow("nothing selected") << kWindow << QRect() << none;
    QTest::newRow("region") << kWindow << kRegion << none;
    QTest::newRow("all of the window") << kWindow << QRect(QPoint(), kWindow) << none;
    QTest::newRow("no room") << kWindow << QRect(20, 10, 0, 10) << none;
    QTest::newRow("over the edges") << kWindow << QRect(-5, -5, 30, 100) << none;
    QTest::newRow("beyond the window") << kWindow << QRect(95, 10, 20, 20) << none;
    QTest::newRow("small picture") << small << QRect() << none;
    QTest::newRow("region of a small picture") << small << QRect(10, 10, 30, 20) << none;
    QTest::newRow("beyond a small picture") << small << kRegion << none;
    QTest::newRow("beside a small picture") << small << QRect(60, 50, 20, 10) << none;
    QTest::newRow("large picture") << QSize(200, 200) << kRegion << none;
    QTest::newRow("no picture") << QSize(0, 0) << kRegion << none;
    QTest::newRow("canvas") << kWindow << kRegion << kRegion.size();
    QTest::newRow("canvas over the edges") << kWindow << QRect(-5, -5, 40, 40) << QSize(40, 40);
    QTest::newRow("small canvas") << kWindow << kRegion << QSize(20, 60);
    QTest::newRow("large canvas") << kWindow << kRegion << QSize(60, 60);
    QTest::newRow("canvas without room") << kWindow << QRect() << kRegion.size();
    QTest::newRow("canvas without a picture") << kWindow << kRegion << QSize(0, 0);
    QTest::newRow("canvas beyond a small picture") << small << kRegion << kRegion.size();
}

void tst_OverlayPainting::layersArePaintedInTheChangedRectangle()
{
    QFETCH(QSize, desktop);
    QFETCH(QRect, region);
    QFETCH(QSize, canvas);
    // Wherever the window stands on the desktop: the picture begins at, before or behind its
    // corner.
    for (const qreal ratio : {1.0, 1.25, 1.5, 1.75, 2.0, 2.625, 3.0, 0.75}) {
        const QImage picture = noise(physical(QRect(QPoint(), desktop), ratio).size());
        const QRect pixels = physical(region, ratio);
        Canvas drawn;
        if (canvas.isValid()) {
            drawn = noise(physical(QRect(region.topLeft(), canvas), ratio).size(), 2);
            drawn->setDevicePixelRatio(ratio);
        }
        for (const QPoint& desktopPos : {QPoint(0, 0), QPoint(-13, -7), QPoint(9, 27)}) {
            compareLayers(sceneOf(picture, region, drawn, desktopPos, ratio),
                          [&](QPainter& painter, const QRect&) {
                              Canvas plain = drawn;
                              if (plain)
                                  plain->setDevicePixelRatio(1);
                              paintPlainly(painter, picture, pixels, plain, desktopPos);
                          });
        }
    }
}

void tst_OverlayPainting::canvasOfAnotherRatioFillsTheRegion_data()
{
    QTest::addColumn<qreal>("ofCanvas");
    QTest::addColumn<qreal>("ofWindow");
    QTest::newRow("2 to 1") << 2.0 << 1.0;
    QTest::newRow("1 to 2") << 1.0 << 2.0;
    QTest::newRow("1.5 to 1") << 1.5 << 1.0;
    QTest::newRow("1.5 to 2") << 1.5 << 2.0;
}

// The window has come to a screen of another ratio since the region was first annotated.
void tst_OverlayPainting::canvasOfAnotherRatioFillsTheRegion()
{
    QFETCH(qreal, ofCanvas);
    QFETCH(qreal, ofWindow);
    const QSize size = physical(QRect(QPoint(), kWindow), ofWindow).size();
    QImage canvas(physical(kRegion, ofCanvas).size(), QImage::Format_RGB32);
    canvas.fill(Qt::green);
    canvas.setDevicePixelRatio(ofCanvas);
    const QImage desktop = noise(size);
    compareLayers(sceneOf(desktop, kRegion, canvas, QPoint(), ofWindow),
                  [&](QPainter& painter, const QRect&) {
                      painter.drawImage(0, 0, dimmed(desktop));
                      painter.fillRect(physical(kRegion, ofWindow), Qt::green);
                  });
}

void tst_OverlayPainting::eachPixelIsPaintedOnce_data()
{
    QTest::addColumn<QRect>("region");
    QTest::addColumn<bool>("annotated");
    QTest::newRow("nothing selected") << QRect() << false;
    QTest::newRow("region") << kRegion << false;
    QTest::newRow("over the edges") << QRect(-5, -5, 30, 100) << false;
    QTest::newRow("canvas") << kRegion << true;
    QTest::newRow("canvas over the edges") << QRect(-5, -5, 30, 100) << true;
}

// Translucent pictures, which would add up.
void tst_OverlayPainting::eachPixelIsPaintedOnce()
{
    QFETCH(QRect, region);
    QFETCH(bool, annotated);
    const auto translucent = [](const QSize& size, quint32 seed) {
        return noise(size, seed, QImage::Format_ARGB32)
            .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    };
    overlay::Scene scene = sceneOf(translucent(kWindow, 1), region);
    scene.desktop.dimmed = translucent(kWindow, 2);
    if (annotated)
        scene.canvas = translucent(region.size(), 3);
    compareLayers(scene, [&](QPainter& painter, const QRect& changed) {
        for (const QRect& part : QRegion(changed) - region) {
            painter.setClipRect(part);
            painter.drawImage(0, 0, scene.desktop.dimmed);
        }
        painter.setClipRect(changed & region);
        if (annotated)
            painter.drawImage(region.topLeft(), *scene.canvas);
        else
            painter.drawImage(0, 0, scene.desktop.bright);
    });
}

void tst_OverlayPainting::highlightIsBrightInAThickFrame_data()
{
    QTest::addColumn<QRect>("window");
    QTest::addColumn<QRect>("frame");
    QTest::newRow("within") << QRect(10, 20, 40, 30) << QRect(12, 22, 36, 26);
    QTest::newRow("odd size") << QRect(10, 20, 41, 31) << QRect(12, 22, 37, 27);
    QTest::newRow("over the top-left corner") << QRect(-10, -20, 40, 50) << QRect(0, 0, 28, 28);
    QTest::newRow("over the bottom-right corner") << QRect(50, 40, 80, 70) << QRect(52, 42, 38, 28);
}

void tst_OverlayPainting::highlightIsBrightInAThickFrame()
{
    QFETCH(QRect, window);
    QFETCH(QRect, frame);
    const QRect bounds(QPoint(), kWindow);
    QCOMPARE(overlay::highlightFrame(window, bounds), frame);
    const QImage desktop = noise(kWindow);
    const QPoint desktopPos(-3, 5);
    const QImage shown = paintedIn(bounds, 1, [&](QPainter& painter, const QRect&) {
        overlay::paintHighlight(painter, sceneOf(desktop, QRect(), {}, desktopPos), frame,
                                kFrameColor);
    });
    const QImage expected = paintedIn(bounds, 1, [&](QPainter& painter, const QRect&) {
        painter.drawImage(frame.topLeft(), desktop.copy(frame.translated(-desktopPos)));
        painter.setPen(QPen(QBrush(kFrameColor), 4.0, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
        painter.drawRect(frame);
    });
    QCOMPARE(shown, expected);
}

QTEST_APPLESS_MAIN(tst_OverlayPainting)
#include "tst_OverlayPainting.moc"
