// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Screen.h"
#include "ToolBarsProbe.h"

namespace
{

const QRect kRegion(QPoint(60, 60), QPoint(459, 359));
constexpr int kMovesOfADrag = 16;

using Path = QVector<QPoint>;

/// The points of a drag that goes through the corners of `path`.
Path movesAlong(const Path& path)
{
    Path moves;
    for (int i = 0; i < kMovesOfADrag; ++i) {
        const double place = double(i + 1) / kMovesOfADrag * (path.size() - 1);
        const int corner = qMin(int(place), path.size() - 2);
        moves << path[corner] + (path[corner + 1] - path[corner]) * (place - corner);
    }
    return moves;
}

void setPenWidth(const ToolBarsProbe& bars, MainItem tool, int width)
{
    QPen pen = bars.pen(tool);
    pen.setWidth(width);
    bars.setPen(tool, pen);
}

/// All of the window, painted anew beside the screen.
QImage paintedAnew(QWidget& window)
{
    return window.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

} // namespace
Q_DECLARE_METATYPE(MainItem)

/// A drag asks for no more than what changes, and leaves nothing behind on the screen.
class tst_ScreenCaptureWnd_repainting : public BehaviourTest
{
    Q_OBJECT

private slots:
    void dragLeavesNothingBehind_data();
    void dragLeavesNothingBehind();
    void shownShapeLeavesNothingBehind_data();
    void shownShapeLeavesNothingBehind();

private:
    /// Drags along `path` and compares the screen whenever `moves` moves were made.
    void drag(const ToolBarsProbe& bars, const Path& path, int moves);
};

void tst_ScreenCaptureWnd_repainting::drag(const ToolBarsProbe& bars, const Path& path, int moves)
{
    const Mouse mouse(bars.canvas());
    mouse.press(path.first());
    int made = 0;
    for (const QPoint& p : movesAlong(path)) {
        mouse.move(p);
        if (++made % moves > 0)
            continue;
        QCoreApplication::processEvents();
        const QImage screen = screenshot();
        QVERIFY2(screen == paintedAnew(*bars.window()), qPrintable(QString("move %1").arg(made)));
    }
    mouse.release(path.last());
    QCoreApplication::processEvents();
    const QImage screen = screenshot();
    QVERIFY(screen == paintedAnew(*bars.window()));
}

void tst_ScreenCaptureWnd_repainting::dragLeavesNothingBehind_data()
{
    QTest::addColumn<MainItem>("tool");
    QTest::addColumn<int>("penWidth");
    QTest::addColumn<Path>("path");
    const Path flat = {{150, 150}, {300, 152}, {40, 148}, {200, 151}};
    const Path steep = {{200, 150}, {201, 250}, {198, 40}, {200, 170}};
    const Path around = {{200, 150}, {300, 200}, {250, 60}, {60, 90}, {120, 250}};
    const Path beyondTheEdge = {{200, 150}, {420, 10}, {-20, 310}};
    const struct {
        const char* name;
        Path path;
    } paths[] = {{"nearly flat", flat},
                 {"nearly upright", steep},
                 {"around", around},
                 {"beyond the edge", beyondTheEdge}};
    for (const MainItem tool : kTools) {
        for (const int width : {2, 21}) {
            for (const auto& row : paths)
                QTest::addRow("%s, pen %d, %s", nameOf(tool), width, row.name)
                    << tool << width << row.path;
        }
    }
}

void tst_ScreenCaptureWnd_repainting::dragLeavesNothingBehind()
{
    QFETCH(MainItem, tool);
    QFETCH(int, penWidth);
    QFETCH(Path, path);
    const Desktop desktop(3);
    for (const int movesBetweenLooks : {1, 3}) {
        ToolBarsProbe bars;
        bars.window()->showFullDesktop(true);
        QVERIFY(QTest::qWaitForWindowExposed(bars.window()));
        bars.annotate(kRegion, tool);
        setPenWidth(bars, tool, penWidth);
        drag(bars, path, movesBetweenLooks);
    }
}

void tst_ScreenCaptureWnd_repainting::shownShapeLeavesNothingBehind_data()
{
    QTest::addColumn<MainItem>("tool");
    QTest::addColumn<Path>("path");
    for (const MainItem tool : {Text, Arrow, Rectangle, Ellipse}) {
        QTest::addRow("%s, moved", nameOf(tool)) << tool << Path{{200, 150}, {120, 60}, {300, 250}};
        QTest::addRow("%s, corner", nameOf(tool)) << tool << Path{{300, 152}, {60, 149}, {310, 60}};
        QTest::addRow("%s, edge", nameOf(tool)) << tool << Path{{100, 151}, {350, 151}, {40, 150}};
        QTest::addRow("%s, missed", nameOf(tool)) << tool << Path{{20, 20}, {90, 25}, {80, 200}};
    }
}

// The shape has become wider since it was drawn.
void tst_ScreenCaptureWnd_repainting::shownShapeLeavesNothingBehind()
{
    QFETCH(MainItem, tool);
    QFETCH(Path, path);
    const Desktop desktop(4);
    for (const int movesBetweenLooks : {1, 3}) {
        ToolBarsProbe bars;
        bars.window()->showFullDesktop(true);
        QVERIFY(QTest::qWaitForWindowExposed(bars.window()));
        bars.annotate(kRegion, tool);
        drag(bars, {{100, 150}, {300, 152}}, movesBetweenLooks);
        setPenWidth(bars, tool, 21);
        drag(bars, path, movesBetweenLooks);
        bars.choose(Scribble);
        QCoreApplication::processEvents();
        const QImage screen = screenshot();
        QVERIFY(screen == paintedAnew(*bars.window()));
    }
}

QTEST_MAIN(tst_ScreenCaptureWnd_repainting)
#include "tst_ScreenCaptureWnd_repainting.moc"
