// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "Pictures.h"
#include "Screen.h"
#include "ScribbleArea.h"

#include <QTextEdit>

struct ScreenCaptureWndAccess {
    /// What choosing a tool does before the tool itself is applied.
    static ScribbleArea* annotate(ScreenCaptureWnd* window)
    {
        window->m_state = ScreenCaptureWnd::StateAnnotating;
        window->initScribbleArea();
        window->m_rectCapture->setEnabled(false);
        return window->m_scribbleArea;
    }
};

namespace
{

const QRect kRegion(QPoint(200, 150), QPoint(499, 349));

QStringList moveOnCanvas(const QPoint& p)
{
    return moveTo(kRegion.topLeft() + p);
}

/// Drags in canvas coordinates, with one move between, so that each segment is known.
void drag(const QPoint& from, const QPoint& over, const QPoint& to)
{
    movePointer(kRegion.topLeft() + from);
    xdotool({"mousedown", "1"});
    movePointer(kRegion.topLeft() + over);
    movePointer(kRegion.topLeft() + to);
    xdotool({"mouseup", "1"});
}

} // namespace

/// The canvas over the region on a real X server, with real mouse and keyboard.
class tst_ScreenCaptureWnd_annotating : public BehaviourTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void canvasShowsTheRegion();
    void strokeIsSeenUndoneAndDelivered();
    void shapesAreDelivered_data();
    void shapesAreDelivered();
    void mosaicIsDelivered();
    void typedTextIsDelivered();
    void unicodeAndRightToLeftTextIsTyped_data();
    void unicodeAndRightToLeftTextIsTyped();
    void undoPastTheFirstEditStartsOver();
    void resetHidesTheCanvasAndKeepsIt();
    void nothingOfACanvasPutAwayIsDelivered();
    void doubleClickOnTheCanvasFinishesOnce();
    void regionIsFrozen();

private:
    QScopedPointer<CaptureProbe> m_capture;
    Receiver m_receiver;
    ScribbleArea* m_canvas = nullptr;
    QImage m_region;
};

void tst_ScreenCaptureWnd_annotating::init()
{
    BehaviourTest::init();
    m_receiver.count = 0;
    m_capture.reset(new CaptureProbe);
    m_capture->window()->connectTo(&m_receiver, SLOT(onCaptured(QImage, bool)));
    m_capture->window()->showFullDesktop(true);
    QVERIFY(QTest::qWaitForWindowActive(m_capture->window()));
    m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
    m_region = m_capture->window()->captureImage();
    m_canvas = ScreenCaptureWndAccess::annotate(m_capture->window());
}

void tst_ScreenCaptureWnd_annotating::cleanup()
{
    m_capture.reset();
    BehaviourTest::cleanup();
}

void tst_ScreenCaptureWnd_annotating::canvasShowsTheRegion()
{
    QCOMPARE(m_canvas->geometry(), kRegion);
    QVERIFY(m_canvas->isVisible());
    QVERIFY(!m_canvas->isWindow());
    QCOMPARE(m_canvas->image(), m_region);
    const QRect inside = kRegion.adjusted(10, 10, -10, -10);
    QTRY_COMPARE(screenshot().copy(inside), m_region.copy(10, 10, inside.width(), inside.height())
                                                .convertToFormat(QImage::Format_RGB32));
}

void tst_ScreenCaptureWnd_annotating::strokeIsSeenUndoneAndDelivered()
{
    drag(QPoint(50, 50), QPoint(120, 80), QPoint(150, 150));
    QImage expected = m_region;
    QPainter painter(&expected);
    painter.setPen(m_canvas->scribblePen());
    painter.drawLine(50, 50, 120, 80);
    painter.drawLine(120, 80, 150, 150);
    painter.end();
    QTRY_COMPARE(m_canvas->image(), expected);
    const QRect inside = kRegion.adjusted(10, 10, -10, -10);
    QTRY_COMPARE(screenshot().copy(inside), expected.copy(10, 10, inside.width(), inside.height())
                                                .convertToFormat(QImage::Format_RGB32));
    m_capture->window()->undo();
    QCOMPARE(m_canvas->image(), m_region);
    m_capture->window()->redo();
    m_capture->window()->accept();
    deliver();
    QCOMPARE(m_receiver.image, expected);
}

void tst_ScreenCaptureWnd_annotating::shapesAreDelivered_data()
{
    QTest::addColumn<int>("state");
    QTest::newRow("rectangle") << int(ScribbleArea::GRAPH_RECT);
    QTest::newRow("ellipse") << int(ScribbleArea::GRAPH_ELLIPSE);
    QTest::newRow("arrow") << int(ScribbleArea::GRAPH_ARROW);
}

void tst_ScreenCaptureWnd_annotating::shapesAreDelivered()
{
    QFETCH(int, state);
    m_canvas->setPaintTypeToGraph();
    m_canvas->setGraphState(state);
    drag(QPoint(60, 60), QPoint(100, 100), QPoint(180, 140));
    auto* frame = m_canvas->findChild<ResizableRect*>();
    QTRY_VERIFY(frame->isVisible());
    QCOMPARE(frame->rect(), QRect(QPoint(60, 60), QPoint(180, 140)));
    // Resized by its corner before it is delivered.
    drag(QPoint(180, 140), QPoint(190, 150), QPoint(200, 160));
    QTRY_COMPARE(frame->rect(), QRect(QPoint(60, 60), QPoint(200, 160)));
    QCOMPARE(m_canvas->image(), m_region);

    QImage expected = m_region;
    QPainter painter(&expected);
    if (state == ScribbleArea::GRAPH_RECT) {
        painter.setPen(m_canvas->rectPen());
        painter.drawRect(QRect(QPoint(60, 60), QPoint(200, 160)));
    } else if (state == ScribbleArea::GRAPH_ELLIPSE) {
        painter.setPen(m_canvas->ellipsePen());
        painter.setRenderHint(QPainter::Antialiasing);
        painter.drawEllipse(QRect(QPoint(60, 60), QPoint(200, 160)));
    } else {
        drawArrowOf(painter, m_canvas->arrowPen().color(),
                    triangle({60, 60}, {187, 158}, {194, 148}),
                    triangle({200, 160}, {183, 163}, {197, 143}));
    }
    painter.end();
    m_capture->window()->accept();
    deliver();
    QCOMPARE(m_receiver.image, expected);
}

void tst_ScreenCaptureWnd_annotating::mosaicIsDelivered()
{
    const QImage before = noise(kRegion.size(), 5);
    m_canvas->setImage(before);
    // With the blocks there are at first: another size would be taken up in the middle of the
    // stroke.
    m_canvas->setPaintTypeToMosaic();
    drag(QPoint(100, 100), QPoint(150, 100), QPoint(150, 160));
    QTRY_VERIFY(m_canvas->canUndo());

    QImage brushed(kRegion.size(), QImage::Format_RGB32);
    brushed.fill(Qt::black);
    QPainter painter(&brushed);
    painter.setPen(QPen(QBrush(Qt::white), 16, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(100, 100, 150, 100);
    painter.drawLine(150, 100, 150, 160);
    painter.end();
    const QImage blocks = inBlocks(before, 2);
    QImage expected = before;
    for (int y = 0; y < kRegion.height(); ++y) {
        for (int x = 0; x < kRegion.width(); ++x) {
            if (brushed.pixel(x, y) == qRgb(255, 255, 255))
                expected.setPixel(x, y, blocks.pixel(x, y));
        }
    }
    m_capture->window()->accept();
    deliver();
    QCOMPARE(m_receiver.count, 1);
    QCOMPARE(m_receiver.image, expected);
}

void tst_ScreenCaptureWnd_annotating::typedTextIsDelivered()
{
    const QImage before = noise(kRegion.size(), 6);
    m_canvas->setImage(before);
    m_canvas->setTextFontSize(18);
    m_canvas->setTextColor(Qt::yellow);
    m_canvas->setPaintTypeToText();
    drag(QPoint(40, 40), QPoint(100, 80), QPoint(240, 140));
    auto* box = m_canvas->findChild<QTextEdit*>();
    QTRY_VERIFY(box->hasFocus());
    xdotool({"type", "hello"});
    xdotool({"key", "Return"});
    xdotool({"type", "world"});
    QTRY_COMPARE(box->toPlainText(), QString("hello\nworld"));
    QVERIFY(m_capture->window()->isVisible());
    QFont font = QApplication::font("QTextEdit");
    font.setPointSize(18);
    m_capture->window()->accept();
    deliver();
    QCOMPARE(m_receiver.count, 1);
    // Beside the glyphs the box lets everything through.
    const QRect boxRect(QPoint(44, 44), QPoint(236, 136));
    const QImage expected = withText(before, boxRect, font, {{"hello\nworld", Qt::yellow}});
    QVERIFY(expected != before);
    QCOMPARE(m_receiver.image, expected);
}

void tst_ScreenCaptureWnd_annotating::unicodeAndRightToLeftTextIsTyped_data()
{
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QString>("text");
    QTest::newRow("German") << "de" << QStringLiteral("Grüße");
    QTest::newRow("Hebrew, right to left") << "il" << QStringLiteral("שלום");
}

// On a keyboard that has the letters: xdotool's own mapping of others comes too late for some.
void tst_ScreenCaptureWnd_annotating::unicodeAndRightToLeftTextIsTyped()
{
    QFETCH(QString, layout);
    QFETCH(QString, text);
    QCOMPARE(QProcess::execute("setxkbmap", {layout}), 0);
    m_canvas->setTextColor(Qt::yellow);
    m_canvas->setPaintTypeToText();
    drag(QPoint(40, 40), QPoint(100, 80), QPoint(280, 140));
    QTRY_VERIFY(m_canvas->findChild<QTextEdit*>());
    auto* box = m_canvas->findChild<QTextEdit*>();
    QTRY_VERIFY(box->hasFocus());
    xdotool({"type", text});
    QTRY_COMPARE(box->toPlainText(), text);
    m_capture->window()->accept();
    deliver();
    QCOMPARE(m_receiver.count, 1);
    QVERIFY(m_receiver.image != m_region);
    QCOMPARE(QProcess::execute("setxkbmap", {"us"}), 0);
}

void tst_ScreenCaptureWnd_annotating::undoPastTheFirstEditStartsOver()
{
    drag(QPoint(50, 50), QPoint(120, 80), QPoint(150, 150));
    QTRY_VERIFY(m_canvas->canUndo());
    m_capture->window()->undo();
    QVERIFY(m_capture->region()->isVisible());
    m_capture->window()->undo();
    QVERIFY(!m_capture->region()->isVisible());
    QVERIFY(m_canvas->isHidden());
}

void tst_ScreenCaptureWnd_annotating::resetHidesTheCanvasAndKeepsIt()
{
    drag(QPoint(50, 50), QPoint(120, 80), QPoint(150, 150));
    QTRY_VERIFY(m_canvas->canUndo());
    m_capture->window()->reset();
    QVERIFY(m_canvas->isHidden());
    m_capture->drag(QPoint(20, 30), QPoint(119, 99));
    QCOMPARE(m_canvas->geometry(), QRect(20, 30, 100, 70));
    QCOMPARE(ScreenCaptureWndAccess::annotate(m_capture->window()), m_canvas);
    QCOMPARE(m_canvas->image(), m_capture->window()->captureImage());
    QVERIFY(!m_canvas->canUndo());
}

void tst_ScreenCaptureWnd_annotating::nothingOfACanvasPutAwayIsDelivered()
{
    drag(QPoint(50, 50), QPoint(120, 80), QPoint(150, 150));
    QTRY_VERIFY(m_canvas->canUndo());
    m_capture->window()->reset();
    QVERIFY(m_capture->window()->scribbledImage().isNull());
    m_capture->drag(QPoint(20, 30), QPoint(119, 99));
    QCOMPARE(m_capture->window()->scribbledImage(), m_capture->window()->captureImage());
    QCOMPARE(m_capture->window()->scribbledImage().size(), QSize(100, 70));
    m_capture->window()->undo();
    QVERIFY(!m_capture->region()->isVisible());
}

void tst_ScreenCaptureWnd_annotating::doubleClickOnTheCanvasFinishesOnce()
{
    xdotool(moveOnCanvas(QPoint(100, 100)) << "click"
                                           << "--repeat"
                                           << "2"
                                           << "--delay"
                                           << "20"
                                           << "1");
    QTRY_COMPARE(m_receiver.count, 1);
    QVERIFY(m_receiver.finished);
    QCOMPARE(m_receiver.image.size(), kRegion.size());
    QTRY_VERIFY(m_capture->isGone());
}

void tst_ScreenCaptureWnd_annotating::regionIsFrozen()
{
    m_capture->drag(kRegion.center(), kRegion.center() + QPoint(50, 50));
    QCOMPARE(m_capture->region()->rect(), kRegion);
}

QTEST_MAIN(tst_ScreenCaptureWnd_annotating)
#include "tst_ScreenCaptureWnd_annotating.moc"
