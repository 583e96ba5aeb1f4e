// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Canvas.h"

/// Undo and redo.
class tst_ScribbleArea_history : public BehaviourTest
{
    Q_OBJECT

private slots:
    void entryHoldsTheStrokesBounds();
    void undoAndRedoAreExact();
    void newEditDropsTheRedoTail();
    void editsBeyondTheEdgeAreUndone();
    void randomEditsUndoAndRedo_data();
    void randomEditsUndoAndRedo();
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
    const auto point = [&] { return QPoint(random.bounded(-20, 220), random.bounded(-20, 170)); };
    const auto edited = [&] {
        pictures = pictures.mid(0, applied + 1);
        pictures << canvas.image();
        ++applied;
    };
    for (int step = 0; step < 120; ++step) {
        switch (random.bounded(6)) {
        case 0:
            canvas.setPaintTypeToScribble();
            canvas.setScribblePen(scribblePen(QColor(random.generate()), random.bounded(1, 20)));
            canvas.drag(point(), point());
            edited();
            break;
        case 1:
            canvas.setMosaicPen(scribblePen(Qt::red, random.bounded(16, 46)));
            canvas.setPaintTypeToMosaic();
            canvas.drag(point(), point());
            edited();
            break;
        case 2: {
            canvas.setPaintTypeToGraph();
            canvas.setGraphState(random.bounded(2));
            const QPoint from = point();
            canvas.drag(from, from + QPoint(random.bounded(8, 60), random.bounded(8, 60)));
            canvas.setPaintTypeToScribble();
            edited();
            break;
        }
        case 3:
        case 4:
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

QTEST_MAIN(tst_ScribbleArea_history)
#include "tst_ScribbleArea_history.moc"
