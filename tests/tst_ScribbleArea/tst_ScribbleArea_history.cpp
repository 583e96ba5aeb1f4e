// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Canvas.h"

namespace
{

/// The pictures that undo and redo step through.
class HistoryModel
{
public:
    explicit HistoryModel(const QImage& image)
        : m_pictures{image}
    {
    }
    int entries() const { return m_pictures.size() - 1; }
    int applied() const { return m_applied; }
    bool frameIsOpen() const { return m_frameIsOpen; }

    /// What comes out is seen when it is looked at first.
    void edit()
    {
        m_pictures = m_pictures.mid(0, ++m_applied);
        m_pictures << QImage();
    }
    void openFrame(bool holdsAnEdit)
    {
        m_frameIsOpen = true;
        m_frameHoldsAnEdit = holdsAnEdit;
    }
    void commit()
    {
        if (m_frameIsOpen && m_frameHoldsAnEdit)
            edit();
        m_frameIsOpen = false;
    }
    void undo()
    {
        commit();
        m_applied = qMax(m_applied - 1, 0);
    }
    void redo() { m_applied = qMin(m_applied + 1, entries()); }
    bool isShown(const QImage& image)
    {
        QImage& expected = m_pictures[m_applied];
        if (expected.isNull())
            expected = image;
        return image == expected;
    }

private:
    QList<QImage> m_pictures;
    int m_applied = 0;
    bool m_frameIsOpen = false;
    bool m_frameHoldsAnEdit = false;
};

/// Takes tools at random, and their models with them.
class RandomEdits
{
public:
    explicit RandomEdits(quint32 seed)
        : m_random(seed)
    {
        canvas.show();
    }
    Canvas canvas;
    HistoryModel model{canvas.image()};

    void step()
    {
        switch (m_random.bounded(7)) {
        case 0:
            canvas.setPaintTypeToScribble();
            canvas.setScribblePen(roundPen(QColor(m_random.generate()), m_random.bounded(1, 20)));
            stroke();
            break;
        case 1:
            canvas.setMosaicPen(roundPen(Qt::red, m_random.bounded(16, 46)));
            canvas.setPaintTypeToMosaic();
            stroke();
            break;
        case 2:
            canvas.setGraphTool(m_random.bounded(2));
            frame(true);
            break;
        case 3:
            canvas.setPaintTypeToText();
            frame(m_random.bounded(3) > 0);
            break;
        case 4:
            canvas.redo();
            model.redo();
            break;
        default:
            canvas.undo();
            model.undo();
            break;
        }
    }

private:
    /// On the picture or up to 20 pixels beside it.
    QPoint point()
    {
        return {m_random.bounded(-20, kSize.width() + 20),
                m_random.bounded(-20, kSize.height() + 20)};
    }
    void stroke()
    {
        model.commit();
        canvas.drag(point(), point());
        model.edit();
    }
    /// Stays open.
    void frame(bool holdsAnEdit)
    {
        model.commit();
        const QPoint from = point();
        canvas.drag(from, from + QPoint(m_random.bounded(8, 60), m_random.bounded(8, 60)));
        model.openFrame(holdsAnEdit);
        if (canvas.textBox())
            canvas.textBox()->setPlainText(holdsAnEdit ? "text\nmore" : " \n\t");
    }

    QRandomGenerator m_random;
};

/// Whether a colour takes more than 8 bits.
bool isDeep(QImage::Format format)
{
    return format == QImage::Format_Grayscale16 || QImage::toPixelFormat(format).redSize() > 8;
}

} // namespace

/// Undo and redo.
class tst_ScribbleArea_history : public BehaviourTest
{
    Q_OBJECT

private slots:
    void entryHoldsTheStrokesBounds();
    void commitWithinAStrokeStartsItsEntryAtTheOrigin();
    void randomEditsAreUndoneAndRedone_data();
    void randomEditsAreUndoneAndRedone();
    void otherFormatsAreUndone_data();
    void otherFormatsAreUndone();
};

void tst_ScribbleArea_history::entryHoldsTheStrokesBounds()
{
    Canvas canvas;
    canvas.setScribblePen(roundPen(Qt::blue, 5));
    canvas.drag({{60, 50}, {40, 80}, {-10, 70}});
    // Half the pen, rounded down, and 2 pixels more.
    QCOMPARE(canvas.areaOf(0), inPixels(edges(-14, 46, 64, 84)));
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
}

void tst_ScribbleArea_history::commitWithinAStrokeStartsItsEntryAtTheOrigin()
{
    Canvas canvas;
    canvas.press(QPoint(50, 60));
    canvas.move(QPoint(90, 60));
    const QImage committed = canvas.image();
    canvas.completeScribble();
    QCOMPARE(canvas.entries(), 0);
    canvas.release(QPoint(110, 70));
    QCOMPARE(canvas.areaOf(0), inPixels(edges(0, 0, 113, 73)));
    canvas.undo();
    QCOMPARE(canvas.image(), committed);
}

void tst_ScribbleArea_history::randomEditsAreUndoneAndRedone_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 10; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

// Not arrows, whose pixels may lie outside the rectangle that is recorded.
void tst_ScribbleArea_history::randomEditsAreUndoneAndRedone()
{
    QFETCH(quint32, seed);
    RandomEdits edits(seed);
    for (int step = 0; step < 150; ++step) {
        edits.step();
        QCOMPARE(edits.canvas.entries(), edits.model.entries());
        QCOMPARE(edits.canvas.canUndo(), edits.model.applied() > 0);
        QCOMPARE(edits.canvas.canRedo(), edits.model.applied() < edits.model.entries());
        QCOMPARE(edits.canvas.frame()->isVisible(), edits.model.frameIsOpen());
        QVERIFY(edits.model.isShown(edits.canvas.image()));
    }
}

void tst_ScribbleArea_history::otherFormatsAreUndone_data()
{
    QTest::addColumn<QImage::Format>("format");
    for (int format = QImage::Format_Mono; format < QImage::NImageFormats; ++format) {
        // Qt cannot paint on the first, and keeps no colours in the second.
        if (format != QImage::Format_Indexed8 && format != QImage::Format_Alpha8)
            QTest::addRow("format %d", format) << QImage::Format(format);
    }
}

void tst_ScribbleArea_history::otherFormatsAreUndone()
{
    QFETCH(QImage::Format, format);
    const QRect area(20, 30, 100, 70);
    QImage start = picture();
    // Qt 6 makes greys of 16 bits of colours.
    if (format == QImage::Format_Grayscale16)
        start = start.convertToFormat(QImage::Format_Grayscale8);
    Canvas canvas(start.convertToFormat(format));
    canvas.show();
    QList<QImage> pictures{canvas.image()};
    canvas.drag(area);
    pictures << canvas.image();
    canvas.setPaintTypeToGraph();
    canvas.drag(area.adjusted(20, 0, 0, 0));
    canvas.setPaintTypeToText();
    pictures << canvas.image();
    canvas.drag(area.adjusted(0, 0, 0, 20));
    canvas.textBox()->setPlainText("text");
    canvas.completeScribble();
    pictures << canvas.image();
    for (int i = 1; i < pictures.size(); ++i)
        QVERIFY(pictures.at(i) != pictures.at(i - 1));
    // Only pictures whose pixels are QRgb can be brushed over; the others stay as they are.
    canvas.setPaintTypeToMosaic();
    canvas.drag(area);
    const bool holdsQRgb =
        format >= QImage::Format_RGB32 && format <= QImage::Format_ARGB32_Premultiplied;
    QCOMPARE(canvas.image() == pictures.last(), !holdsQRgb);

    // Blended colours of more than 8 bits are undone to 8 bits, which is what the picture began
    // with.
    for (int i = 3; i >= 0; --i) {
        canvas.undo();
        QVERIFY(canvas.image() == pictures.at(i) || (isDeep(format) && i > 0));
    }
}

QTEST_MAIN(tst_ScribbleArea_history)
#include "tst_ScribbleArea_history.moc"
