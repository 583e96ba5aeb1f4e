// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Canvas.h"

namespace
{

/// A point on the picture or up to 20 pixels beside it.
QPoint pointNear(QRandomGenerator& random)
{
    return {random.bounded(-20, kSize.width() + 20), random.bounded(-20, kSize.height() + 20)};
}

/// Drags out a frame that counts.
void dragFrame(Canvas& canvas, QRandomGenerator& random)
{
    const QPoint from = pointNear(random);
    canvas.drag(from, from + QPoint(random.bounded(8, 60), random.bounded(8, 60)));
}

/// Whether a colour takes more than 8 bits.
bool isDeep(QImage::Format format)
{
    return format == QImage::Format_Grayscale16 || QImage::toPixelFormat(format).redSize() > 8;
}

/// How many entries there are, and how many of them are applied.
struct HistoryModel {
    int entries = 0;
    int applied = 0;
    bool frameIsOpen = false;
    bool frameHoldsAnEdit = false;

    void edit()
    {
        ++applied;
        entries = applied;
    }
    void openFrame(bool holdsAnEdit)
    {
        frameIsOpen = true;
        frameHoldsAnEdit = holdsAnEdit;
    }
    void commit()
    {
        if (frameIsOpen && frameHoldsAnEdit)
            edit();
        frameIsOpen = false;
    }
    void undo()
    {
        commit();
        applied = qMax(applied - 1, 0);
    }
    void redo() { applied = qMin(applied + 1, entries); }
};

} // namespace

/// Undo and redo.
class tst_ScribbleArea_history : public BehaviourTest
{
    Q_OBJECT

private slots:
    void entryHoldsTheStrokesBounds();
    void commitWithinAStrokeStartsItsEntryAtTheOrigin();
    void undoAndRedoAreExact();
    void newEditDropsTheRedoTail();
    void editsBeyondTheEdgeAreUndone();
    void randomEditsUndoAndRedo_data();
    void randomEditsUndoAndRedo();
    void randomWalkKeepsTheInvariant_data();
    void randomWalkKeepsTheInvariant();
    void otherFormatsAreUndone_data();
    void otherFormatsAreUndone();
};

void tst_ScribbleArea_history::entryHoldsTheStrokesBounds()
{
    Canvas canvas;
    canvas.setScribblePen(scribblePen(Qt::blue, 5));
    canvas.drag(QPoint(60, 50), QPoint(40, 80));
    const QRect first = QRect(QPoint(60, 50), QPoint(40, 80)).normalized().adjusted(-4, -4, 4, 4);
    const QRect bounds = QRect(60, 50, 1, 1) | first | QRect(40, 80, 1, 1).adjusted(-4, -4, 4, 4);
    const DiffRect entry = canvas.history().at(0);
    QCOMPARE(entry.position, bounds.topLeft());
    QCOMPARE(entry.image.size(), bounds.size());
    const QImage before = picture();
    const QImage after = canvas.image();
    for (int y = 0; y < bounds.height(); ++y) {
        for (int x = 0; x < bounds.width(); ++x) {
            const QPoint p = bounds.topLeft() + QPoint(x, y);
            QCOMPARE(entry.image.pixel(x, y) & 0xffffffu,
                     (before.pixel(p) ^ after.pixel(p)) & 0xffffffu);
        }
    }
}

void tst_ScribbleArea_history::commitWithinAStrokeStartsItsEntryAtTheOrigin()
{
    Canvas canvas;
    canvas.press(QPoint(50, 60));
    canvas.move(QPoint(90, 60));
    const QImage committed = canvas.image();
    canvas.completeScribble();
    QCOMPARE(canvas.history().size(), 0);
    canvas.release(QPoint(110, 70));
    const DiffRect entry = canvas.history().at(0);
    QCOMPARE(QRect(entry.position, entry.image.size()), edges(0, 0, 113, 73));
    canvas.undo();
    QCOMPARE(canvas.image(), committed);
}

void tst_ScribbleArea_history::undoAndRedoAreExact()
{
    Canvas canvas;
    canvas.drag(QPoint(20, 20), QPoint(90, 60));
    const QImage drawn = canvas.image();
    for (int i = 0; i < 2; ++i) {
        QVERIFY(canvas.canUndo() && !canvas.canRedo());
        canvas.undo();
        QCOMPARE(canvas.image(), picture());
        QVERIFY(!canvas.canUndo() && canvas.canRedo());
        canvas.undo();
        QCOMPARE(canvas.image(), picture());
        canvas.redo();
        QCOMPARE(canvas.image(), drawn);
        canvas.redo();
        QCOMPARE(canvas.image(), drawn);
    }
}

void tst_ScribbleArea_history::newEditDropsTheRedoTail()
{
    Canvas canvas;
    canvas.drag(QPoint(20, 20), QPoint(90, 60));
    canvas.drag(QPoint(30, 20), QPoint(90, 70));
    canvas.undo();
    canvas.undo();
    canvas.drag(QPoint(40, 20), QPoint(90, 80));
    QCOMPARE(canvas.history().size(), 1);
    QVERIFY(!canvas.canRedo());
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
}

void tst_ScribbleArea_history::editsBeyondTheEdgeAreUndone()
{
    Canvas canvas;
    canvas.setScribblePen(scribblePen(Qt::blue, 9));
    canvas.drag(QPoint(-40, -20), QPoint(260, 190));
    QCOMPARE(canvas.history().at(0).position, QPoint(-46, -26));
    const QImage drawn = canvas.image();
    QVERIFY(drawn != picture());
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
    canvas.redo();
    QCOMPARE(canvas.image(), drawn);
}

void tst_ScribbleArea_history::randomEditsUndoAndRedo_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 10; ++seed)
        QTest::newRow(qPrintable(QString("seed %1").arg(seed))) << seed;
}

// Only tools whose pixels lie inside their recorded rectangle.
void tst_ScribbleArea_history::randomEditsUndoAndRedo()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    Canvas canvas;
    QList<QImage> pictures{canvas.image()};
    int applied = 0;
    const auto edited = [&] {
        pictures = pictures.mid(0, applied + 1);
        pictures << canvas.image();
        ++applied;
    };
    for (int step = 0; step < 120; ++step) {
        switch (random.bounded(7)) {
        case 0:
            canvas.setPaintTypeToScribble();
            canvas.setScribblePen(scribblePen(QColor(random.generate()), random.bounded(1, 20)));
            canvas.drag(pointNear(random), pointNear(random));
            edited();
            break;
        case 1:
            canvas.setMosaicPen(scribblePen(Qt::red, random.bounded(16, 46)));
            canvas.setPaintTypeToMosaic();
            canvas.drag(pointNear(random), pointNear(random));
            edited();
            break;
        case 2:
            canvas.setPaintTypeToGraph();
            canvas.setGraphState(random.bounded(2));
            dragFrame(canvas, random);
            canvas.setPaintTypeToScribble();
            edited();
            break;
        case 3:
            canvas.setPaintTypeToText();
            canvas.setTextFontSize(random.bounded(6, 40));
            canvas.setTextColor(QColor(random.generate()));
            dragFrame(canvas, random);
            canvas.textBox()->setPlainText("text\nmore");
            canvas.setPaintTypeToScribble();
            edited();
            break;
        case 4:
        case 5:
            canvas.undo();
            applied = qMax(applied - 1, 0);
            break;
        default:
            canvas.redo();
            applied = qMin(applied + 1, pictures.size() - 1);
            break;
        }
        QCOMPARE(canvas.history().size(), pictures.size() - 1);
        QCOMPARE(ScribbleAreaAccess::applied(canvas), applied);
        QCOMPARE(canvas.image(), pictures.at(applied));
    }
    while (canvas.canUndo()) {
        canvas.undo();
        QCOMPARE(canvas.image(), pictures.at(--applied));
    }
    while (canvas.canRedo()) {
        canvas.redo();
        QCOMPARE(canvas.image(), pictures.at(++applied));
    }
    QCOMPARE(applied, pictures.size() - 1);
}

void tst_ScribbleArea_history::randomWalkKeepsTheInvariant_data()
{
    randomEditsUndoAndRedo_data();
}

// All tools, with frames that stay open: what is left of an arrow after an undo is not looked at.
void tst_ScribbleArea_history::randomWalkKeepsTheInvariant()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    Canvas canvas;
    canvas.show();
    HistoryModel model;
    for (int step = 0; step < 200; ++step) {
        switch (random.bounded(8)) {
        case 0:
            canvas.setPaintTypeToScribble();
            model.commit();
            canvas.drag(pointNear(random), pointNear(random));
            model.edit();
            break;
        case 1:
            canvas.setPaintTypeToMosaic();
            model.commit();
            canvas.drag(pointNear(random), pointNear(random));
            model.edit();
            break;
        case 2:
            canvas.setPaintTypeToGraph();
            model.commit();
            canvas.setGraphState(random.bounded(3));
            dragFrame(canvas, random);
            model.openFrame(true);
            break;
        case 3:
            canvas.setPaintTypeToText();
            model.commit();
            dragFrame(canvas, random);
            model.openFrame(random.bounded(2) == 1);
            canvas.textBox()->setPlainText(model.frameHoldsAnEdit ? "text" : " ");
            break;
        case 4:
        case 5:
            canvas.undo();
            model.undo();
            break;
        default:
            canvas.redo();
            model.redo();
            break;
        }
        QCOMPARE(canvas.history().size(), model.entries);
        QCOMPARE(ScribbleAreaAccess::applied(canvas), model.applied);
        QCOMPARE(canvas.canUndo(), model.applied > 0);
        QCOMPARE(canvas.canRedo(), model.applied < model.entries);
        QCOMPARE(canvas.frame()->isVisible(), model.frameIsOpen);
    }
}

void tst_ScribbleArea_history::otherFormatsAreUndone_data()
{
    QTest::addColumn<int>("format");
    for (int format = QImage::Format_Mono; format < QImage::NImageFormats; ++format) {
        // Qt cannot paint on the first, and keeps no colours in the second.
        if (format != QImage::Format_Indexed8 && format != QImage::Format_Alpha8)
            QTest::newRow(qPrintable(QString("format %1").arg(format))) << format;
    }
}

void tst_ScribbleArea_history::otherFormatsAreUndone()
{
    QFETCH(int, format);
    const QImage before = picture().convertToFormat(QImage::Format(format));
    const QPoint from(20, 30);
    const QPoint to(120, 100);
    Canvas canvas(before);
    canvas.show();
    QList<QImage> pictures{before};
    canvas.drag(from, to);
    pictures << canvas.image();
    canvas.setPaintTypeToGraph();
    canvas.drag(from + QPoint(20, 0), to);
    canvas.setPaintTypeToText();
    pictures << canvas.image();
    canvas.drag(from, to + QPoint(0, 20));
    canvas.textBox()->setPlainText("text");
    canvas.completeScribble();
    pictures << canvas.image();
    for (int i = 1; i < pictures.size(); ++i)
        QVERIFY(pictures.at(i) != pictures.at(i - 1));
    // Only pictures whose pixels are QRgb can be brushed over; the others stay as they are.
    canvas.setPaintTypeToMosaic();
    canvas.drag(from, to);
    const bool holdsQRgb =
        format >= QImage::Format_RGB32 && format <= QImage::Format_ARGB32_Premultiplied;
    QCOMPARE(canvas.image() == pictures.last(), !holdsQRgb);

    // Blended colours of more than 8 bits are undone to 8 bits, which is what the picture began
    // with.
    const bool exact = !isDeep(QImage::Format(format));
    for (int i = 3; i >= 0; --i) {
        canvas.undo();
        QVERIFY(canvas.image() == pictures.at(i) || (!exact && i > 0));
    }
    for (int i = 1; i <= 3; ++i) {
        canvas.redo();
        QVERIFY(canvas.image() == pictures.at(i) || !exact);
    }
}

QTEST_MAIN(tst_ScribbleArea_history)
#include "tst_ScribbleArea_history.moc"
