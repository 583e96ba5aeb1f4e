// SPDX-License-Identifier: MIT
#include "WaylandTest.h"

#include "Input.h"
#include "Pictures.h"
#include "Reports.h"
#include "Waiting.h"

#include <QtMath>

namespace
{

// The mosaic's blocks are not of this size.
constexpr int kTileSidePx = 15;
// An output whose pixels are not those of the picture blurs so much at the edges of tiles.
constexpr int kBlurPx = 3;

int edge(int coordinate, qreal scale)
{
    return qFloor(coordinate * scale + 0.5);
}

QRect scaled(const QRect& r, qreal scale)
{
    return {QPoint(edge(r.left(), scale), edge(r.top(), scale)),
            QPoint(edge(r.right() + 1, scale) - 1, edge(r.bottom() + 1, scale) - 1)};
}

QImage tiles(const QSize& size, quint32 seed)
{
    const QSize inTiles = size / kTileSidePx + QSize(1, 1);
    return noise(inTiles, seed).scaled(inTiles * kTileSidePx).copy(QRect(QPoint(), size));
}

/// `picture` with black wherever `reference` has an edge near.
QImage withoutEdges(QImage picture, const QImage& reference)
{
    QImage result = picture;
    result.fill(Qt::black);
    for (int y = kBlurPx; y < reference.height() - kBlurPx; ++y) {
        for (int x = kBlurPx; x < reference.width() - kBlurPx; ++x) {
            const QRgb here = reference.pixel(x, y);
            if (here == reference.pixel(x - kBlurPx, y - kBlurPx) &&
                here == reference.pixel(x + kBlurPx, y - kBlurPx) &&
                here == reference.pixel(x - kBlurPx, y + kBlurPx) &&
                here == reference.pixel(x + kBlurPx, y + kBlurPx))
                result.setPixel(x, y, picture.pixel(x, y));
        }
    }
    return result;
}

} // namespace

void WaylandTest::initTestCase()
{
    m_outputs = outputs();
    QVERIFY(!m_outputs.isEmpty());
    m_size = sizeOfAll(m_outputs);
    m_scale = largestScale(m_outputs);
    m_pointer.reset(new Pointer);
    QVERIFY(m_pointer->isThere());
    m_isXwayland = qgetenv("QT_QPA_PLATFORM") == "xcb";
    if (!m_isXwayland)
        qputenv("QT_QPA_PLATFORM", "wayland");
    showTiles();
}

void WaylandTest::showTiles()
{
    for (int i = 0; i < m_outputs.size(); ++i) {
        const Output& output = m_outputs[i];
        const QImage before = pictureOf(output);
        const QString file = m_scratch.filePath(output.name + ".png");
        tiles(before.size(), quint32(i + 1)).save(file);
        m_backgrounds.push_back(std::make_unique<QProcess>());
        m_backgrounds.back()->start("swaybg", {"-o", output.name, "-i", file, "-m", "center"});
        QImage seen;
        QVERIFY2(waitFor([&] { return (seen = pictureOf(output)) != before; }), "no background");
        m_atStartOn << seen;
    }
    m_atStart = pictureOfAll();
}

void WaylandTest::cleanupTestCase()
{
    for (const auto& background : m_backgrounds) {
        background->kill();
        background->waitForFinished();
    }
}

void WaylandTest::init()
{
    BehaviourTest::init();
    moveTo(m_outputs.first().place.topLeft() + QPoint(10, 10));
}

void WaylandTest::cleanup()
{
    m_host.reset();
    QVERIFY2(m_isDesktopSpoilt || eventually([this] { return pictureOfAll() == m_atStart; }),
             "something stays");
    BehaviourTest::cleanup();
}

void WaylandTest::startCapture()
{
    m_host.reset(new HostProcess);
    QVERIFY2(waitFor([this] { return !where("ScreenCaptureWnd").isEmpty(); }),
             "the capture does not start");
    QCOMPARE(where("ScreenCaptureWnd"), QRect(QPoint(), m_size));
    for (int i = 0; i < m_outputs.size(); ++i)
        QVERIFY2(waitFor([&] { return pictureOf(m_outputs[i]) != m_atStartOn[i]; }),
                 qPrintable("the capture is not seen on " + m_outputs[i].name));
}

// Each pixel is compared only where the picture has the pixels of the output, and the window, which
// has those of the compositor's coordinates through Xwayland, shows them.
QString WaylandTest::overlayDifference(int output, const QRect& loupe) const
{
    const Output& shown = m_outputs[output];
    const QRect hidden = scaled(loupe.translated(-shown.place.topLeft()), shown.scale)
                             .adjusted(-kBlurPx, -kBlurPx, kBlurPx, kBlurPx);
    QImage seen = without(pictureOf(shown), hidden);
    QImage expected = without(dimmed(m_atStartOn[output]), hidden);
    const bool isExact = shown.scale == m_scale && shown.scale == qRound(shown.scale) &&
                         (!m_isXwayland || m_scale == 1);
    if (!isExact) {
        seen = withoutEdges(seen, m_atStartOn[output]);
        expected = withoutEdges(expected, m_atStartOn[output]);
    }
    return difference(seen, expected);
}

void WaylandTest::checkOverlay()
{
    for (int i = 0; i < m_outputs.size(); ++i) {
        QString seen;
        const bool right = waitFor([&] {
            seen = overlayDifference(i, where("MagnifierWidget"));
            return seen.isEmpty();
        });
        QVERIFY2(right, qPrintable("output " + m_outputs[i].name + ": " + seen));
    }
}

bool WaylandTest::isOnAnOutput(const QPoint& p) const
{
    return std::any_of(m_outputs.begin(), m_outputs.end(),
                       [&](const Output& output) { return output.place.contains(p); });
}

bool WaylandTest::isOnOneOutput(const QString& name)
{
    return std::any_of(m_outputs.begin(), m_outputs.end(),
                       [&](const Output& output) { return isWithin(name, output.place); });
}

bool WaylandTest::isOnOutputOf(const QString& name, const QRect& region)
{
    return std::any_of(m_outputs.begin(), m_outputs.end(), [&](const Output& output) {
        return output.place.contains(region) && isWithin(name, output.place);
    });
}

bool WaylandTest::isWithin(const QString& name, const QRect& area)
{
    const QRect r = where(name);
    return !r.isEmpty() && area.contains(r);
}

void WaylandTest::sendKeys(const QStringList& words)
{
    waitFor([this] {
        const bool hasKeyboard = m_isXwayland ? m_host->ask("has keyboard") == "yes"
                                              : processWithKeyboard() == m_host->pid();
        return hasKeyboard || m_host->hasEnded();
    });
    run("env", QStringList{"DISPLAY=" + qEnvironmentVariable("outer_display"), "xdotool"} + words);
}

void WaylandTest::key(const QString& name)
{
    sendKeys({"key", name});
}

void WaylandTest::type(const QString& text)
{
    sendKeys({"type", text});
}

// By two moves, as a hand does by many: Xwayland leaves a press where the last move was, even if
// the pointer has entered a window elsewhere since.
void WaylandTest::moveTo(const QPointF& p)
{
    m_pointer->moveTo(p + QPointF(0.25, 0), m_size);
    m_pointer->moveTo(p, m_size);
}

void WaylandTest::click(const QPoint& p, Qt::MouseButton button)
{
    moveTo(p);
    m_pointer->setPressed(button, true);
    m_pointer->setPressed(button, false);
}

void WaylandTest::clickOn(const QString& name)
{
    const QRect r = where(name);
    QVERIFY2(!r.isEmpty(), qPrintable("there is no " + name));
    click(r.center());
}

void WaylandTest::press(const QPointF& from, const QPointF& to)
{
    moveTo(from);
    m_pointer->setPressed(Qt::LeftButton, true);
    moveTo((from + to) / 2);
    moveTo(to);
}

void WaylandTest::drag(const QPointF& from, const QPointF& to)
{
    press(from, to);
    m_pointer->setPressed(Qt::LeftButton, false);
}

// The tool bar says that the release has come.
void WaylandTest::select(const QPointF& from, const QPointF& to)
{
    drag(from, to);
    QVERIFY2(waitFor([this] { return !where("mainToolBar").isEmpty(); }),
             "the drag does not reach the capture");
}

void WaylandTest::select(const QRect& region)
{
    select(region.topLeft(), region.bottomRight());
}

void WaylandTest::restoreOutputs()
{
    for (int i = 0; i < m_outputs.size(); ++i) {
        const Output& old = m_outputs[i];
        tellCompositor(QStringLiteral("output %1 mode --custom %2x%3 position %4 %5 "
                                      "scale %6 transform normal")
                           .arg(old.name)
                           .arg(m_atStartOn[i].width())
                           .arg(m_atStartOn[i].height())
                           .arg(old.place.x())
                           .arg(old.place.y())
                           .arg(old.scale));
    }
}

QRect WaylandTest::pixelsOf(const QRect& area) const
{
    return scaled(area, m_scale);
}

void WaylandTest::expectEnd(const QString& how)
{
    const QString end = m_host->end();
    const bool crashed = m_host->hasCrashed();
    if (end != how)
        m_host->kill();
    QVERIFY2(!crashed, "the host crashes");
    QCOMPARE(end, how);
}

void WaylandTest::expectDelivered(const QRect& region)
{
    expectEnd("captured");
    if (QTest::currentTestFailed())
        return;
    const QString seen = difference(m_host->picture(), m_atStart.copy(pixelsOf(region)));
    QVERIFY2(seen.isEmpty(), qPrintable("region " + text(region) + ": " + seen));
}
