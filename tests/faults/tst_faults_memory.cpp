// SPDX-License-Identifier: MIT
#include "../tst_ScribbleArea/Canvas.h"
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "Memory.h"
#include "MosaicPixels.h"

#include <QPushButton>

struct ScreenCaptureWndAccess {
    static void setDesktop(ScreenCaptureWnd* window, const QImage& desktop)
    {
        *window->m_desktopImage = desktop;
    }
    static void dimDesktop(ScreenCaptureWnd* window) { window->dimDesktop(); }
};

namespace
{

constexpr QSize kPictureSize(500, 400);
/// Less than a picture, more than everything else needs.
constexpr std::size_t kTooManyBytes = 500 * 400 * 4 / 2;
constexpr QPoint kCorner(10, 10);
constexpr QPoint kOppositeCorner(490, 390);

enum Tool { Pen, Rectangle, Ellipse, Arrow, Mosaic };

void choose(Canvas& canvas, Tool tool)
{
    if (tool == Pen) {
        canvas.setPaintTypeToScribble();
    } else if (tool == Mosaic) {
        canvas.setPaintTypeToMosaic();
    } else {
        canvas.setPaintTypeToGraph();
        canvas.setGraphState(tool == Rectangle ? ScribbleArea::GRAPH_RECT
                             : tool == Ellipse ? ScribbleArea::GRAPH_ELLIPSE
                                               : ScribbleArea::GRAPH_ARROW);
    }
}

} // namespace
Q_DECLARE_METATYPE(Tool)

/// Memory that does not suffice for another picture, while everything else goes on: the picture
/// that is there stays as it is, and what could not be undone is not drawn.
class tst_faults_memory : public BehaviourTest
{
    Q_OBJECT

private slots:
    void editIsNotDrawn_data();
    void editIsNotDrawn();
    void textIsNotDrawn();
    void strokeWithoutHistoryIsTakenBack_data();
    void strokeWithoutHistoryIsTakenBack();
    void mosaicIsChosen();
    void undoAndRedoOfAPictureOfOnesOwn();
    void undoAndRedoWaitForMemory();
    void clearingLeavesThePicture();
    void blocksOfAShallowPicture();
    void toolIsChosen();
    void nothingButANullPictureCanBeDelivered();
    void desktopIsDimmedWhenPainted();
};

void tst_faults_memory::editIsNotDrawn_data()
{
    QTest::addColumn<Tool>("tool");
    QTest::newRow("pen") << Pen;
    QTest::newRow("rectangle") << Rectangle;
    QTest::newRow("ellipse") << Ellipse;
    QTest::newRow("arrow") << Arrow;
    QTest::newRow("mosaic") << Mosaic;
}

void tst_faults_memory::editIsNotDrawn()
{
    QFETCH(Tool, tool);
    Canvas canvas(picture(kPictureSize));
    const QImage before = picture(kPictureSize);
    choose(canvas, tool);
    {
        const MemoryShortage shortage(kTooManyBytes);
        canvas.drag(kCorner, kOppositeCorner);
        canvas.completeScribble();
        QVERIFY(shortage.refused() > 0);
    }
    QVERIFY(canvas.image() == before);
    // As soon as there is memory everything works, and can be undone.
    choose(canvas, tool);
    canvas.drag(kCorner, kOppositeCorner);
    canvas.completeScribble();
    QVERIFY(canvas.image() != before);
    while (canvas.canUndo())
        canvas.undo();
    QVERIFY(canvas.image() == before);
}

void tst_faults_memory::textIsNotDrawn()
{
    Canvas canvas(picture(kPictureSize));
    canvas.setPaintTypeToText();
    canvas.drag(kCorner, kOppositeCorner);
    canvas.textBox()->setPlainText("text");
    {
        const MemoryShortage shortage(kTooManyBytes);
        canvas.completeScribble();
        QVERIFY(shortage.refused() > 0);
    }
    QVERIFY(canvas.image() == picture(kPictureSize));
}

void tst_faults_memory::strokeWithoutHistoryIsTakenBack_data()
{
    QTest::addColumn<Tool>("tool");
    QTest::newRow("pen") << Pen;
    QTest::newRow("mosaic") << Mosaic;
}

void tst_faults_memory::strokeWithoutHistoryIsTakenBack()
{
    QFETCH(Tool, tool);
    Canvas canvas(picture(kPictureSize));
    canvas.drag(QPoint(100, 300), QPoint(120, 310));
    const QImage before = canvas.image().copy();
    choose(canvas, tool);
    canvas.press(kCorner);
    canvas.move(kOppositeCorner);
    QVERIFY(canvas.image() != before);
    {
        const MemoryShortage shortage(kTooManyBytes);
        canvas.release(kOppositeCorner);
        QVERIFY(shortage.refused() > 0);
    }
    QVERIFY(canvas.image() == before);
    QCOMPARE(canvas.history().size(), 1);
    canvas.undo();
    QVERIFY(canvas.image() == picture(kPictureSize));
    QVERIFY(!canvas.canUndo());
}

void tst_faults_memory::mosaicIsChosen()
{
    Canvas canvas(picture(kPictureSize));
    {
        const MemoryShortage shortage(kTooManyBytes);
        canvas.setPaintTypeToMosaic();
        QVERIFY(shortage.refused() > 0);
    }
    canvas.drag(kCorner, kOppositeCorner);
    QVERIFY(canvas.image() == picture(kPictureSize));
    canvas.setPaintTypeToMosaic();
    canvas.drag(kCorner, kOppositeCorner);
    QVERIFY(canvas.image() != picture(kPictureSize));
}

void tst_faults_memory::undoAndRedoOfAPictureOfOnesOwn()
{
    Canvas canvas(picture(kPictureSize));
    canvas.drag(kCorner, kOppositeCorner);
    const QImage before = picture(kPictureSize);
    const QImage drawn = canvas.image().copy();
    const MemoryShortage shortage(kTooManyBytes);
    canvas.undo();
    QVERIFY(canvas.image() == before);
    canvas.redo();
    QVERIFY(canvas.image() == drawn);
}

void tst_faults_memory::undoAndRedoWaitForMemory()
{
    Canvas canvas(picture(kPictureSize));
    canvas.drag(kCorner, kOppositeCorner);
    // Somebody else holds the picture as well, so that changing it takes a copy.
    const QImage drawn = canvas.image();
    {
        const MemoryShortage shortage(kTooManyBytes);
        canvas.undo();
        QVERIFY(canvas.canUndo());
        QVERIFY(canvas.image() == drawn);
    }
    canvas.undo();
    const QImage before = canvas.image();
    QVERIFY(before == picture(kPictureSize));
    {
        const MemoryShortage shortage(kTooManyBytes);
        canvas.redo();
        QVERIFY(canvas.canRedo());
        QVERIFY(canvas.image() == before);
    }
    canvas.redo();
    QVERIFY(canvas.image() == drawn);
}

void tst_faults_memory::clearingLeavesThePicture()
{
    Canvas canvas(picture(kPictureSize));
    const QImage held = canvas.image();
    {
        const MemoryShortage shortage(kTooManyBytes);
        canvas.clearImage();
    }
    QVERIFY(canvas.image() == held);
    QVERIFY(!canvas.modified());
}

void tst_faults_memory::blocksOfAShallowPicture()
{
    const QImage shallow = picture(kPictureSize).convertToFormat(QImage::Format_RGB16);
    QImage blocks(kPictureSize, QImage::Format_ARGB32);
    blocks.fill(Qt::red);
    const QImage before = blocks.copy();
    {
        const MemoryShortage shortage(kTooManyBytes);
        mosaic::makeMosaicImage(blocks, shallow, 8);
        QVERIFY(shortage.refused() > 0);
    }
    QVERIFY(blocks == before);
}

void tst_faults_memory::toolIsChosen()
{
    CaptureProbe capture;
    Receiver receiver;
    const QImage desktop = picture(QSize(800, 600));
    const QRect region(QPoint(20, 20), kPictureSize);
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    capture.window()->showFullDesktop(true);
    ScreenCaptureWndAccess::setDesktop(capture.window(), desktop);
    capture.drag(region.topLeft(), region.bottomRight());
    {
        const MemoryShortage shortage(kTooManyBytes);
        auto* tool = capture.toolBar()->findChild<QPushButton*>();
        QVERIFY(tool->isCheckable());
        tool->click();
        QVERIFY(shortage.refused() > 0);
    }
    auto* canvas = capture.window()->findChild<ScribbleArea*>();
    QVERIFY(canvas->isVisible());
    QVERIFY(canvas->image().isNull());
    QTest::mouseClick(canvas, Qt::LeftButton, {}, kCorner);
    capture.window()->undo();
    // The annotations had nothing to be drawn on, but the region itself is still there.
    capture.window()->accept();
    deliver();
    QCOMPARE(receiver.count, 1);
    QVERIFY(receiver.finished);
    QVERIFY(receiver.image == desktop.copy(region));
}

void tst_faults_memory::nothingButANullPictureCanBeDelivered()
{
    CaptureProbe capture;
    Receiver receiver;
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    capture.window()->showFullDesktop(true);
    ScreenCaptureWndAccess::setDesktop(capture.window(), picture(QSize(800, 600)));
    capture.drag(QPoint(20, 20), QPoint(519, 419));
    {
        const MemoryShortage shortage(kTooManyBytes);
        capture.window()->accept();
    }
    deliver();
    QCOMPARE(receiver.count, 1);
    QVERIFY(receiver.finished);
    QVERIFY(receiver.image.isNull());
    QVERIFY(capture.isGone());
}

void tst_faults_memory::desktopIsDimmedWhenPainted()
{
    CaptureProbe capture;
    const QImage desktop = picture(kPictureSize);
    capture.window()->setGeometry(desktop.rect());
    ScreenCaptureWndAccess::setDesktop(capture.window(), desktop);
    {
        const MemoryShortage shortage(kTooManyBytes);
        ScreenCaptureWndAccess::dimDesktop(capture.window());
        QVERIFY(shortage.refused() > 0);
    }
    QImage expected = desktop.convertToFormat(QImage::Format_RGB32);
    QPainter(&expected).fillRect(expected.rect(), QColor(0, 0, 0, 100));
    QImage shown(kPictureSize, QImage::Format_RGB32);
    capture.window()->render(&shown, QPoint(), QRegion(), QWidget::RenderFlags());
    QCOMPARE(shown, expected);
}

QTEST_MAIN(tst_faults_memory)
#include "tst_faults_memory.moc"
