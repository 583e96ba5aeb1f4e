// SPDX-License-Identifier: MIT
#include "tst_wayland.h"

#include "Marks.h"
#include "Pictures.h"
#include "Reports.h"
#include "Waiting.h"

namespace
{

constexpr QSize kRegionSize(400, 240);
constexpr int kFromLastRowPx = 10;

QRect grown(const QRect& r, int by)
{
    return r.adjusted(-by, -by, by, by);
}

} // namespace

void tst_wayland::overlayIsTheDimmedDesktop()
{
    startCapture();
    for (const Output& output : m_outputs) {
        moveTo(output.place.center());
        QVERIFY2(waitFor([&] { return output.place.contains(where("MagnifierWidget").center()); }),
                 qPrintable("the loupe is at " + text(where("MagnifierWidget"))));
        checkOverlay();
    }
    click(m_outputs.first().place.center(), Qt::RightButton);
    expectEnd("cancelled");
}

void tst_wayland::regionIsDelivered_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    const auto row = [](const QString& name, const QPointF& from, const QPointF& to) {
        QTest::newRow(qPrintable(name)) << from << to;
    };
    for (const Output& output : m_outputs) {
        const QRect r = output.place;
        row(output.name, r.center(), r.center() - QPoint(211, 123));
        row(output.name + ", between coordinates", r.center() - QPointF(211.5, 123.5),
            QPointF(r.center()) + QPointF(20.75, 30.75));
        row(output.name + ", all", r.topLeft(), r.bottomRight());
        for (const Output& other : m_outputs) {
            if (other.name != output.name)
                row(output.name + " to " + other.name, r.center(), other.place.center());
        }
    }
    const QRect all(QPoint(), m_size);
    if (m_outputs.size() > 1 && isOnAnOutput(all.topLeft()) && isOnAnOutput(all.bottomRight()))
        row("all outputs", all.topLeft(), all.bottomRight());
}

void tst_wayland::regionIsDelivered()
{
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    startCapture();
    select(from, to);
    key("Return");
    expectDelivered({QPoint(qFloor(qMin(from.x(), to.x())), qFloor(qMin(from.y(), to.y()))),
                     QPoint(qFloor(qMax(from.x(), to.x())), qFloor(qMax(from.y(), to.y())))});
}

void tst_wayland::keysReachTheCapture_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("afterDrag");
    QTest::addColumn<QString>("end");
    QTest::newRow("Escape without a click") << "Escape" << false << "cancelled";
    QTest::newRow("Escape") << "Escape" << true << "cancelled";
    QTest::newRow("Return") << "Return" << true << "captured";
    QTest::newRow("Enter on the number pad") << "KP_Enter" << true << "captured";
}

void tst_wayland::keysReachTheCapture()
{
    QFETCH(QString, name);
    QFETCH(bool, afterDrag);
    QFETCH(QString, end);
    startCapture();
    if (afterDrag)
        select(QRect(m_outputs.last().place.center(), QSize(100, 80)));
    key(name);
    expectEnd(end);
}

void tst_wayland::rightClickEndsTheCapture()
{
    startCapture();
    click(m_outputs.last().place.center(), Qt::RightButton);
    expectEnd("cancelled");
}

void tst_wayland::rightClickDropsTheRegion()
{
    const QRect region = regionOn(0);
    startCapture();
    select(region);
    click(region.topLeft() - QPoint(20, 20), Qt::RightButton);
    QVERIFY(waitFor([this] { return where("mainToolBar").isEmpty(); }));
    checkOverlay();
    select(region.translated(20, 20));
    key("Return");
    expectDelivered(region.translated(20, 20));
}

void tst_wayland::doubleClickDelivers()
{
    const QRect region = regionOn(m_outputs.size() - 1);
    startCapture();
    select(region);
    click(region.center());
    click(region.center());
    expectDelivered(region);
}

// A region in the upper part, below which there is space for the bars. Tiles and the mosaic's
// blocks do not begin there.
QRect tst_wayland::regionOn(int output) const
{
    return {m_outputs[output].place.topLeft() + QPoint(103, 151), kRegionSize};
}

void tst_wayland::startDrawing(const QRect& region, const QString& tool)
{
    startCapture();
    select(region);
    clickOn(tool);
    QVERIFY(waitFor([this] { return !where("subToolBar").isEmpty(); }));
}

namespace
{

/// What a tool leaves where it is used along a frame.
struct Mark {
    const char* tool;
    QColor color;
    /// Of the frame's size.
    QVector<QPointF> places;
    /// In coordinates.
    int reach;
};

const QColor kRed(251, 56, 56);

QVector<Mark> marks()
{
    return {{"scribble", kRed, {{0, 0}, {0.25, 0.25}, {0.5, 0.5}, {0.75, 0.75}, {1, 1}}, 1},
            {"Arrow", kRed, {{0.25, 0.25}, {0.5, 0.5}, {0.9, 0.9}}, 1},
            {"Rectangle", kRed, {{0, 0.5}, {1, 0.5}, {0.5, 0}, {0.5, 1}}, 1},
            {"Ellipse", kRed, {{0, 0.5}, {1, 0.5}, {0.5, 0}, {0.5, 1}}, 1},
            // Its first line begins at the top.
            {"text", Qt::black, {{0.2, 0}}, 20}};
}

QPoint placeIn(const QRect& frame, const QPointF& place)
{
    return frame.topLeft() + QPoint(qRound(place.x() * (frame.width() - 1)),
                                    qRound(place.y() * (frame.height() - 1)));
}

} // namespace

void tst_wayland::annotationIsDelivered_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<QRect>("region");
    const auto row = [](const QString& tool, const QString& where, const QRect& region) {
        QTest::newRow(qPrintable(tool + " on " + where)) << tool << region;
    };
    const QStringList tools{"scribble", "text", "Arrow", "Rectangle", "Ellipse", "Mosaic"};
    for (const QString& tool : tools) {
        for (int i = 0; i < m_outputs.size(); ++i)
            row(tool, m_outputs[i].name, regionOn(i));
        if (m_outputs.size() > 1) {
            QRect across(QPoint(), kRegionSize);
            across.moveCenter((m_outputs[0].place.center() + m_outputs[1].place.center()) / 2);
            row(tool, "both", across);
        }
    }
}

// Beside it everything is as it was.
void tst_wayland::annotationIsDelivered()
{
    constexpr int besidePx = 10;
    QFETCH(QString, tool);
    QFETCH(QRect, region);
    const QRect frame(region.topLeft() + QPoint(100, 70), QSize(200, 100));
    startDrawing(region, tool);
    drag(frame.topLeft(), frame.bottomRight());
    if (tool == "text") {
        QVERIFY(waitFor([this] { return !where("QTextEdit").isEmpty(); }));
        type("HMHMHM");
        QVERIFY(waitFor([&] { return m_host->content("QTextEdit") == "HMHMHM"; }));
    }
    clickOn("doneButton");
    expectEnd("captured");
    const QImage picture = m_host->picture();
    const QRect pixels = pixelsOf(region);
    const QImage before = m_atStart.copy(pixels);
    const QRect drawn = pixelsOf(frame).translated(-pixels.topLeft());
    const QRect around = grown(drawn, qCeil(besidePx * m_scale));
    const QString seen = difference(without(picture, around), without(before, around));
    QVERIFY2(seen.isEmpty(), qPrintable("beside the annotation: " + seen));
    if (tool == "Mosaic")
        expectMosaic(drawn, picture, before);
    else
        expectMarks(tool, drawn, picture, before);
}

void tst_wayland::expectMarks(const QString& tool, const QRect& frame, const QImage& picture,
                              const QImage& before) const
{
    for (const Mark& mark : marks()) {
        if (mark.tool != tool)
            continue;
        const QString seen = notBetween(before, picture, mark.color);
        QVERIFY2(seen.isEmpty(), qPrintable(seen));
        for (const QPointF& place : mark.places) {
            const QPoint p = placeIn(frame, place);
            const QRect near = grown(QRect(p, QSize(1, 1)), qCeil(mark.reach * m_scale));
            QVERIFY2(holdsColor(picture.copy(near), mark.color),
                     qPrintable("no pen at " + text(p)));
        }
    }
}

// Along the diagonal, which is within the brush.
void tst_wayland::expectMosaic(const QRect& frame, const QImage& picture,
                               const QImage& before) const
{
    constexpr int blockSide = 2;
    constexpr int steps = 100;
    QImage source = before;
    source.setDevicePixelRatio(m_scale);
    const QImage blocks = inBlocks(source, blockSide);
    QVERIFY(difference(blocks, before) != QString());
    for (int i = 0; i <= steps; ++i) {
        const QPoint p = placeIn(frame, QPointF(1, 1) * i / steps);
        QVERIFY2(picture.pixelColor(p).rgb() == blocks.pixelColor(p).rgb(),
                 qPrintable(text(p) + " is " + picture.pixelColor(p).name()));
    }
}

void tst_wayland::addRegions()
{
    QTest::addColumn<QRect>("region");
    for (int i = 0; i < m_outputs.size(); ++i)
        QTest::newRow(qPrintable(m_outputs[i].name)) << regionOn(i);
}

void tst_wayland::typedTextArrives_data()
{
    QTest::addColumn<QRect>("region");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("text");
    for (int i = 0; i < m_outputs.size(); ++i) {
        const auto row = [&](const QString& name, const QString& keys, const QString& text) {
            QTest::newRow(qPrintable(name + " on " + m_outputs[i].name))
                << regionOn(i) << keys << text;
        };
        row("typed", "Harbour 46", "Harbour 46");
        row("composed", "'ea", "\u00e9a");
    }
}

// On the session's keyboard the apostrophe is a dead key.
void tst_wayland::typedTextArrives()
{
    QFETCH(QRect, region);
    QFETCH(QString, keys);
    QFETCH(QString, text);
    startDrawing(region, "text");
    drag(region.topLeft() + QPoint(50, 50), region.topLeft() + QPoint(250, 150));
    QVERIFY2(waitFor([this] { return !where("QTextEdit").isEmpty(); }), "there is no text box");
    type(keys);
    QVERIFY2(waitFor([&] { return m_host->content("QTextEdit") == text; }),
             qPrintable("the text box holds " + m_host->content("QTextEdit")));
    key("Escape");
    expectEnd("cancelled");
}

void tst_wayland::cursorHasTheShapeOfWhatIsUnderIt_data()
{
    if (m_isXwayland)
        QSKIP("The tests of X11 desktops have it.");
    addRegions();
}

void tst_wayland::cursorHasTheShapeOfWhatIsUnderIt()
{
    QFETCH(QRect, region);
    startCapture();
    select(region);
    const auto expectShape = [this](const QPoint& p, Qt::CursorShape shape) {
        moveTo(p);
        QVERIFY2(waitFor([&] { return m_host->ask("cursor").toInt() == shape; }),
                 qPrintable(text(p) + ": " + m_host->ask("cursor")));
    };
    expectShape(region.topLeft() - QPoint(20, 20), Qt::BitmapCursor);
    expectShape(region.center(), Qt::SizeAllCursor);
    expectShape(region.topLeft(), Qt::SizeFDiagCursor);
    expectShape(region.topRight(), Qt::SizeBDiagCursor);
    expectShape({region.left(), region.center().y()}, Qt::SizeHorCursor);
    expectShape({region.center().x(), region.top()}, Qt::SizeVerCursor);
    expectShape(where("Mosaic").center(), Qt::ArrowCursor);
    clickOn("Mosaic");
    QVERIFY(waitFor([this] { return !where("subToolBar").isEmpty(); }));
    expectShape(region.center(), Qt::BitmapCursor);
    clickOn("Rectangle");
    expectShape(region.center(), Qt::CrossCursor);
    key("Escape");
    expectEnd("cancelled");
}

namespace
{

const QString kDialog = "dialog of the host";

void addDialogs()
{
    QTest::addColumn<QString>("question");
    for (const char* question : {"open", "open modal"})
        QTest::newRow(question) << question;
}

} // namespace

void tst_wayland::dialogOfTheHostIsReached_data()
{
    if (m_isXwayland)
        QSKIP("The tests of X11 desktops have it.");
    addDialogs();
}

void tst_wayland::dialogOfTheHostIsReached()
{
    const QString line = "line of the dialog";
    QFETCH(QString, question);
    const QRect region = regionOn(0);
    startCapture();
    select(region);
    const QImage before = pictureOfAll();
    m_host->ask(question);
    QVERIFY2(waitFor([&] { return !placeOf(kDialog).isEmpty(); }), "no dialog opens");
    const QRect dialog = placeOf(kDialog);
    QVERIFY2(waitFor([&] {
                 return pictureOfAll().copy(pixelsOf(dialog)) != before.copy(pixelsOf(dialog));
             }),
             qPrintable("the dialog at " + text(dialog) + " is covered"));
    click(dialog.center());
    type("abc");
    QVERIFY2(waitFor([&] { return m_host->content(line) == "abc"; }),
             qPrintable("the dialog was given the keys " + m_host->content(line)));
    key("Escape");
    QVERIFY2(waitFor([&] { return placeOf(kDialog).isEmpty(); }), "the dialog stays");
    key("Return");
    expectDelivered(region);
}

void tst_wayland::captureEndsWhileADialogOfTheHostIsOpen_data()
{
    if (m_isXwayland)
        QSKIP("The tests of X11 desktops have it.");
    addDialogs();
}

void tst_wayland::captureEndsWhileADialogOfTheHostIsOpen()
{
    QFETCH(QString, question);
    startCapture();
    m_host->ask(question);
    QVERIFY2(waitFor([&] { return !placeOf(kDialog).isEmpty(); }), "no dialog opens");
    tellCompositor("output " + m_outputs.last().name + " transform 90");
    expectEnd("failed: The screens have changed.");
    restoreOutputs();
}

void tst_wayland::fontSizeListOpensAndTakesKeysAndClicks_data()
{
    addRegions();
}

void tst_wayland::fontSizeListOpensAndTakesKeysAndClicks()
{
    const QString list = "QComboBoxPrivateContainer";
    QFETCH(QRect, region);
    startDrawing(region, "text");
    QVERIFY(waitFor([this] { return !where("QComboBox").isEmpty(); }));
    const auto open = [&] {
        // A compositor may not have seen yet that the list no longer lies under the pointer.
        moveTo(region.center());
        const QImage before = pictureOfAll();
        clickOn("QComboBox");
        QVERIFY2(waitFor([&] { return !where(list).isEmpty(); }), "no list opens");
        QVERIFY2(isOnOutputOf(list, region), qPrintable("the list is at " + text(where(list))));
        const QRect inner = pixelsOf(grown(where(list), -2));
        QVERIFY2(waitFor([&] { return pictureOfAll().copy(inner) != before.copy(inner); }),
                 "the list is not seen");
    };
    open();
    // The pointer may be over the list.
    key("Home");
    key("Down");
    key("Return");
    QVERIFY2(waitFor([&] { return where(list).isEmpty(); }), "keys do not reach the list");
    QCOMPARE(m_host->content("QComboBox"), QString("9"));
    open();
    const QRect r = where(list);
    click({r.center().x(), r.bottom() - kFromLastRowPx});
    QVERIFY2(waitFor([&] { return where(list).isEmpty(); }), "a click does not reach the list");
    QVERIFY(m_host->content("QComboBox") != "9");
    key("Escape");
    expectEnd("cancelled");
}

void tst_wayland::toolTipIsShown_data()
{
    addRegions();
}

// It is as white as the bar.
void tst_wayland::toolTipIsShown()
{
    QFETCH(QRect, region);
    startCapture();
    select(region);
    const auto isOpen = [this] { return !where("QTipLabel").isEmpty(); };
    // Qt shows none for a move before it learns that the window is active.
    for (int move = 0; move < 3 && !isOpen(); ++move) {
        moveTo(where("Mosaic").center() + QPoint(move, 0));
        waitFor(isOpen);
    }
    QVERIFY2(isOpen(), "no tool tip opens");
    const QRect tip = where("QTipLabel");
    QVERIFY2(isOnOutputOf("QTipLabel", region), qPrintable("the tool tip is at " + text(tip)));
    const QPoint inside = pixelsOf(grown(tip, -3)).bottomRight();
    QVERIFY2(waitFor([&] { return pictureOfAll().pixelColor(inside) == Qt::white; }),
             qPrintable("the tool tip at " + text(tip) + " is covered"));
    key("Escape");
    expectEnd("cancelled");
}

void tst_wayland::openSaveDialog(const QRect& region)
{
    startCapture();
    select(region);
    clickOn("save");
    QVERIFY2(waitFor([this] { return !where("QFileDialog").isEmpty(); }), "no dialog opens");
    QVERIFY2(isOnOneOutput("QFileDialog"),
             qPrintable("the dialog is at " + text(where("QFileDialog"))));
}

void tst_wayland::saveDialogSaves_data()
{
    addRegions();
}

void tst_wayland::saveDialogSaves()
{
    QFETCH(QRect, region);
    const QString file = "saved.bmp";
    openSaveDialog(region);
    clickOn("fileNameEdit");
    key("ctrl+a");
    type(file);
    QVERIFY2(waitFor([&] { return m_host->content("fileNameEdit") == file; }),
             qPrintable("the dialog was given the keys " + m_host->content("fileNameEdit")));
    key("Return");
    QVERIFY2(waitFor([this] { return where("QFileDialog").isEmpty(); }), "the dialog stays");
    QVERIFY(waitFor([this] { return where("mainToolBar").isEmpty(); }));
    const QString seen = difference(m_host->written(file), m_atStart.copy(pixelsOf(region)));
    QVERIFY2(seen.isEmpty(), qPrintable("saved region " + text(region) + ": " + seen));
    checkOverlay();
    key("Escape");
    expectEnd("cancelled");
}

void tst_wayland::saveDialogIsCancelled_data()
{
    addRegions();
}

void tst_wayland::saveDialogIsCancelled()
{
    QFETCH(QRect, region);
    openSaveDialog(region);
    key("Escape");
    QVERIFY2(waitFor([this] { return where("QFileDialog").isEmpty(); }),
             "Escape does not reach the dialog");
    key("Return");
    expectDelivered(region);
}

void tst_wayland::nothingIsShownBeforeThePortalAnswers()
{
    {
        const StoppedPortal stopped;
        m_host.reset(new HostProcess);
        QCOMPARE(m_host->ask("where ScreenCaptureWnd"), QString("nowhere"));
        QVERIFY(processWithKeyboard() != m_host->pid());
        QVERIFY(pictureOfAll() == m_atStart);
    }
    QVERIFY(waitFor([this] { return !where("ScreenCaptureWnd").isEmpty(); }));
    checkOverlay();
    key("Escape");
    expectEnd("cancelled");
}

void tst_wayland::changeOfAnOutputCancels_data()
{
    QTest::addColumn<QString>("change");
    const QString last = "output " + m_outputs.last().name;
    QTest::newRow("rotated") << last + " transform 90";
    QTest::newRow("resized") << last + " mode --custom 640x480";
    QTest::newRow("scaled") << last + " scale " + (m_outputs.last().scale == 1 ? "2" : "1");
}

void tst_wayland::changeOfAnOutputCancels()
{
    QFETCH(QString, change);
    const QRect region = regionOn(0);
    startCapture();
    press(region.topLeft(), region.bottomRight());
    tellCompositor(change);
    expectEnd("failed: The screens have changed.");
    restoreOutputs();
}

QTEST_GUILESS_MAIN(tst_wayland)
