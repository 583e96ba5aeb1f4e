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

/// What `draw` paints in `changed` of an otherwise magenta window.
template <typename Draw>
QImage paintedIn(const QRect& changed, qreal devicePixelRatio, Draw draw)
{
    QImage window(kWindow * devicePixelRatio, QImage::Format_RGB32);
    window.setDevicePixelRatio(devicePixelRatio);
    window.fill(Qt::magenta);
    return drawnOn(window, [&](QPainter& painter) {
        painter.setClipRect(changed);
        draw(painter, changed);
    });
}

/// Compares the layers of `scene` with what `draw` paints, whatever changed.
template <typename Draw>
void compareLayers(const overlay::Scene& scene, Draw draw)
{
    const qreal ratio = scene.desktop.devicePixelRatio();
    for (const QRect& changed : changedRects()) {
        const QImage shown = paintedIn(changed, ratio, [&](QPainter& painter, const QRect& area) {
            overlay::paintSurround(painter, scene, area);
            overlay::paintRegion(painter, scene);
        });
        QCOMPARE(shown, paintedIn(changed, ratio, draw));
    }
}

/// The layers one over the other: the picture, the dimming, the region.
void paintPlainly(QPainter& painter, const QImage& desktop, const QRect& region,
                  const Canvas& canvas, const QPoint& desktopPos)
{
    painter.drawImage(desktopPos, desktop);
    painter.fillRect(QRect(QPoint(), kWindow), QColor(0, 0, 0, 100));
    if (canvas)
        painter.drawImage(region.topLeft(), *canvas);
    else if (!region.isEmpty())
        painter.drawImage(region.topLeft(), desktop.copy(region.translated(-desktopPos)));
}

overlay::Scene sceneOf(const QImage& desktop, const QRect& region = QRect(),
                       const Canvas& canvas = {}, const QPoint& desktopPos = QPoint())
{
    return {desktop, overlay::dimmed(desktop), desktopPos, QRect(QPoint(), kWindow), region,
            canvas};
}

QImage scaledByTwo(const QSize& size)
{
    QImage image = noise(size);
    image.setDevicePixelRatio(2);
    return image;
}

} // namespace
Q_DECLARE_METATYPE(Canvas)

class tst_OverlayPainting : public BehaviourTest
{
    Q_OBJECT

private slots:
    void dimmedPictureIsBlackAtAlpha100();
    void layersArePaintedInTheChangedRectangle_data();
    void layersArePaintedInTheChangedRectangle();
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
    QImage scaled = overlay::dimmed(scaledByTwo(kWindow));
    QCOMPARE(scaled.devicePixelRatio(), 2.0);
    scaled.setDevicePixelRatio(1);
    QCOMPARE(scaled, dimmed(picture));
}

void tst_OverlayPainting::layersArePaintedInTheChangedRectangle_data()
{
    QTest::addColumn<QImage>("desktop");
    QTest::addColumn<QRect>("region");
    QTest::addColumn<Canvas>("canvas");
    const QImage desktop = noise(kWindow);
    const QImage small = noise(QSize(50, 40));
    const QImage annotated = noise(kRegion.size(), 2);
    QTest::newRow("nothing selected") << desktop << QRect() << Canvas();
    QTest::newRow("region") << desktop << kRegion << Canvas();
    QTest::newRow("all of the window") << desktop << QRect(QPoint(), kWindow) << Canvas();
    QTest::newRow("no room") << desktop << QRect(20, 10, 0, 10) << Canvas();
    QTest::newRow("over the edges") << desktop << QRect(-5, -5, 30, 100) << Canvas();
    QTest::newRow("beyond the window") << desktop << QRect(95, 10, 20, 20) << Canvas();
    QTest::newRow("small picture") << small << QRect() << Canvas();
    QTest::newRow("region of a small picture") << small << QRect(10, 10, 30, 20) << Canvas();
    QTest::newRow("beyond a small picture") << small << kRegion << Canvas();
    QTest::newRow("beside a small picture") << small << QRect(60, 50, 20, 10) << Canvas();
    QTest::newRow("large picture") << noise(QSize(200, 200)) << kRegion << Canvas();
    QTest::newRow("no picture") << QImage() << kRegion << Canvas();
    QTest::newRow("canvas") << desktop << kRegion << Canvas(annotated);
    QTest::newRow("canvas over the edges") << desktop << QRect(-5, -5, 40, 40) << Canvas(annotated);
    QTest::newRow("small canvas") << desktop << kRegion << Canvas(noise(QSize(20, 60), 2));
    QTest::newRow("large canvas") << desktop << kRegion << Canvas(noise(QSize(60, 60), 2));
    QTest::newRow("canvas without room") << desktop << QRect() << Canvas(annotated);
    QTest::newRow("canvas without a picture") << desktop << kRegion << Canvas(QImage());
    QTest::newRow("canvas beyond a small picture") << small << kRegion << Canvas(annotated);
    QTest::newRow("scaled screen") << scaledByTwo(2 * kWindow) << QRect() << Canvas();
    QTest::newRow("canvas on a scaled screen")
        << scaledByTwo(2 * kWindow) << kRegion << Canvas(annotated);
}

void tst_OverlayPainting::layersArePaintedInTheChangedRectangle()
{
    QFETCH(QImage, desktop);
    QFETCH(QRect, region);
    QFETCH(Canvas, canvas);
    // Wherever the window stands on the desktop: the picture begins at, before or behind its
    // corner.
    const bool scaled = desktop.devicePixelRatio() != 1;
    const QVector<QPoint> places =
        scaled ? QVector<QPoint>{{0, 0}} : QVector<QPoint>{{0, 0}, {-13, -7}, {9, 27}, {200, -300}};
    for (const QPoint& desktopPos : places) {
        compareLayers(sceneOf(desktop, region, canvas, desktopPos),
                      [&](QPainter& painter, const QRect&) {
                          paintPlainly(painter, desktop, region, canvas, desktopPos);
                      });
    }
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
    scene.dimmedDesktop = translucent(kWindow, 2);
    if (annotated)
        scene.canvas = translucent(region.size(), 3);
    compareLayers(scene, [&](QPainter& painter, const QRect& changed) {
        for (const QRect& part : QRegion(changed) - region) {
            painter.setClipRect(part);
            painter.drawImage(0, 0, scene.dimmedDesktop);
        }
        painter.setClipRect(changed & region);
        if (annotated)
            painter.drawImage(region.topLeft(), *scene.canvas);
        else
            painter.drawImage(0, 0, scene.desktop);
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
