// SPDX-License-Identifier: MIT
#include "CaptureProbe.h"
#include "Screen.h"

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

} // namespace

/// A drag asks for no more than what changes, and leaves nothing behind on the screen.
class tst_ScreenCaptureWnd_repainting : public BehaviourTest
{
    Q_OBJECT

private slots:
    void dragLeavesNothingBehind_data();
    void dragLeavesNothingBehind();

private:
    /// Compares the screen with all of the window, painted anew beside it.
    void look() const;
    /// Drags along `path` and looks whenever `moves` moves were made.
    void drag(const Path& path, int moves) const;
    void setPenWidth(MainItem tool, int width) const;

    QScopedPointer<CaptureProbe> m_capture;
};

void tst_ScreenCaptureWnd_repainting::look() const
{
    QCoreApplication::processEvents();
    const QImage screen = screenshot();
    const QImage anew = m_capture->window()->grab().toImage();
    QVERIFY(screen == anew.convertToFormat(QImage::Format_RGB32));
}

void tst_ScreenCaptureWnd_repainting::drag(const Path& path, int moves) const
{
    const Mouse mouse(m_capture->canvas());
    mouse.press(path.first());
    int made = 0;
    for (const QPoint& p : movesAlong(path)) {
        mouse.move(p);
        if (++made % moves == 0)
            look();
    }
    mouse.release(path.last());
    look();
}

void tst_ScreenCaptureWnd_repainting::setPenWidth(MainItem tool, int width) const
{
    QPen pen = m_capture->pen(tool);
    pen.setWidth(width);
    m_capture->setPen(tool, pen);
}

void tst_ScreenCaptureWnd_repainting::dragLeavesNothingBehind_data()
{
    QTest::addColumn<MainItem>("tool");
    QTest::addColumn<int>("penWidth");
    QTest::addColumn<bool>("shapeShown");
    QTest::addColumn<Path>("path");
    const struct {
        const char* name;
        bool shapeShown;
        Path path;
    } rows[] = {{"nearly flat", false, {{150, 150}, {300, 152}, {40, 148}, {200, 151}}},
                {"nearly upright", false, {{200, 150}, {201, 250}, {198, 40}, {200, 170}}},
                {"around", false, {{200, 150}, {300, 200}, {250, 60}, {60, 90}, {120, 250}}},
                {"beyond the edge", false, {{200, 150}, {420, 10}, {-20, 310}}},
                {"shape moved", true, {{200, 150}, {120, 60}, {300, 250}}},
                {"shape's corner", true, {{300, 152}, {60, 149}, {310, 60}}},
                {"shape's edge", true, {{100, 151}, {350, 151}, {40, 150}}},
                {"shape missed", true, {{20, 20}, {90, 25}, {80, 200}}}};
    for (const auto& row : rows) {
        for (const MainItem tool : kTools) {
            if (row.shapeShown && (tool == Scribble || tool == Mosaic))
                continue;
            for (const int width : {2, 21}) {
                if (width == 21 || !row.shapeShown)
                    QTest::addRow("%s, pen %d, %s", nameOf(tool), width, row.name)
                        << tool << width << row.shapeShown << row.path;
            }
        }
    }
}

// A shape that is shown already becomes wider first.
void tst_ScreenCaptureWnd_repainting::dragLeavesNothingBehind()
{
    QFETCH(MainItem, tool);
    QFETCH(int, penWidth);
    QFETCH(bool, shapeShown);
    QFETCH(Path, path);
    const Desktop desktop(3);
    for (const int movesBetweenLooks : {1, 3}) {
        m_capture.reset();
        m_capture.reset(new CaptureProbe);
        m_capture->window()->showFullDesktop(true);
        QVERIFY(QTest::qWaitForWindowExposed(m_capture->window()));
        m_capture->annotate(kRegion, tool);
        if (shapeShown)
            drag({{100, 150}, {300, 152}}, movesBetweenLooks);
        setPenWidth(tool, penWidth);
        drag(path, movesBetweenLooks);
        m_capture->choose(tool == Scribble ? Rectangle : Scribble);
        look();
    }
    m_capture.reset();
}

QTEST_MAIN(tst_ScreenCaptureWnd_repainting)
#include "tst_ScreenCaptureWnd_repainting.moc"
