// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Canvas.h"

namespace
{

const QRect kBox = edges(24, 34, 146, 116);

void startText(Canvas& canvas)
{
    canvas.setPaintTypeToText();
    canvas.drag(kBox.topLeft() - QPoint(4, 4), kBox.bottomRight() + QPoint(4, 4));
}

QFont fontOf(int pointSize)
{
    QFont font = QApplication::font("QTextEdit");
    font.setPointSize(pointSize);
    return font;
}

/// Shows the canvas so that its text box gets the focus.
bool isActive(Canvas& canvas)
{
    canvas.show();
    canvas.activateWindow();
    return QTest::qWaitForWindowActive(&canvas);
}

} // namespace

/// Text boxes.
class tst_ScribbleArea_text : public BehaviourTest
{
    Q_OBJECT

private slots:
    void textBoxSettings();
    void textIsRenderedIntoThePicture();
    void blanksLeaveNoTrace();
    void textBoxFollowsTheFrame();
    void undoTakesThePendingTextBack();
    void fontSizeAndColourMakeTheBox();
    void boxIsMadeInTheFrame();
    void undoHidesTheBoxWhateverTheTool();
    void secondCommitInTextModeHoldsNoPixels();
    void hugeTextIsHarmless();
    void committedTextIsDrawnWithoutCursor();
    void textIsCutAtTheBox();
    void fontSizeAppliesToWhatIsTypedAlready();
    void colourAppliesToWhatIsTypedNext();
    void colourAndSizeSurviveIntoTheNextText();
    void colourSurvivesErasingWhatWasTyped();
};

void tst_ScribbleArea_text::textBoxSettings()
{
    Canvas canvas;
    canvas.show();
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(150, 100));
    const QTextEdit* box = canvas.textBox();
    QVERIFY(box->isVisible());
    QVERIFY(canvas.frame()->isVisible());
    QCOMPARE(box->parentWidget(), &canvas);
    QVERIFY(box->windowFlags() & Qt::FramelessWindowHint);
    QCOMPARE(box->geometry(), edges(24, 34, 146, 96));
    QCOMPARE(box->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(box->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(box->lineWrapMode(), QTextEdit::NoWrap);
    QVERIFY(!box->isUndoRedoEnabled());
    QCOMPARE(box->styleSheet(),
             QString("background:rgba(0,0,0,0%); border-width:0; border-style:outset}"));
}

void tst_ScribbleArea_text::textIsRenderedIntoThePicture()
{
    QImage plain(kSize, QImage::Format_RGB32);
    plain.fill(QColor(10, 200, 30));
    Canvas canvas(plain);
    canvas.show();
    canvas.setTextFontSize(20);
    canvas.setTextColor(Qt::red);
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    QTest::keyClicks(canvas.textBox(), "HHHHHHHHHHHHHHHHHHHH");
    canvas.press(QPoint(190, 140));
    QVERIFY(canvas.textBox()->isHidden());
    QVERIFY(!canvas.frame()->isVisible());
    QVERIFY(canvas.modified());

    const QRect box = edges(24, 34, 116, 96);
    const DiffRect entry = canvas.history().at(0);
    QCOMPARE(QRect(entry.position, entry.image.size()), box);
    int changed = 0;
    for (int y = 0; y < kSize.height(); ++y) {
        for (int x = 0; x < kSize.width(); ++x) {
            const bool differs = canvas.image().pixel(x, y) != plain.pixel(x, y);
            QVERIFY(!differs || box.contains(x, y));
            changed += differs;
        }
    }
    // Glyphs alone: some pixels, and far from all of the box.
    QVERIFY(changed > 100);
    QVERIFY(changed < box.width() * box.height() / 2);
    canvas.undo();
    QCOMPARE(canvas.image(), plain);
}

void tst_ScribbleArea_text::blanksLeaveNoTrace()
{
    Canvas canvas;
    canvas.show();
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.textBox()->setPlainText("  \n \t ");
    canvas.completeScribble();
    QCOMPARE(canvas.image(), picture());
    QCOMPARE(canvas.history().size(), 0);
    QVERIFY(!canvas.modified());
    QVERIFY(canvas.textBox()->isHidden());
}

void tst_ScribbleArea_text::textBoxFollowsTheFrame()
{
    Canvas canvas;
    canvas.show();
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.textBox()->setPlainText("abc");
    canvas.drag(QPoint(40, 30), QPoint(50, 40));
    QCOMPARE(canvas.frame()->rect(), edges(30, 40, 130, 110));
    QCOMPARE(canvas.textBox()->geometry(), edges(34, 44, 126, 106));
    canvas.completeScribble();
    // The next text starts empty, in the same box.
    QTextEdit* box = canvas.textBox();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    QCOMPARE(canvas.textBox(), box);
    QVERIFY(box->toPlainText().isEmpty());
}

void tst_ScribbleArea_text::undoTakesThePendingTextBack()
{
    Canvas canvas;
    canvas.show();
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    QTest::keyClicks(canvas.textBox(), "undo me");
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
    QVERIFY(canvas.textBox()->isHidden());
    QVERIFY(canvas.canRedo());
    canvas.redo();
    QVERIFY(canvas.image() != picture());
}

void tst_ScribbleArea_text::fontSizeAndColourMakeTheBox()
{
    Canvas canvas;
    QVERIFY(!canvas.textBox());
    canvas.setTextFontSize(22);
    QVERIFY(canvas.textBox());
    QVERIFY(canvas.textBox()->isHidden());
    QCOMPARE(canvas.textBox()->font().pointSize(), 22);
    Canvas other;
    other.setTextColor(Qt::magenta);
    QCOMPARE(other.textBox()->textColor(), QColor(Qt::magenta));
    QVERIFY(other.textBox()->isHidden());
}

void tst_ScribbleArea_text::boxIsMadeInTheFrame()
{
    Canvas canvas;
    canvas.setPaintTypeToGraph();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.setTextFontSize(22);
    QCOMPARE(canvas.textBox()->geometry(), edges(24, 34, 116, 96));
}

void tst_ScribbleArea_text::undoHidesTheBoxWhateverTheTool()
{
    Canvas canvas;
    canvas.show();
    canvas.setTextFontSize(20);
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.textBox()->show();
    canvas.undo();
    QVERIFY(canvas.textBox()->isHidden());
    QVERIFY(!canvas.frame()->isVisible());
    QCOMPARE(canvas.image(), picture());
}

void tst_ScribbleArea_text::secondCommitInTextModeHoldsNoPixels()
{
    Canvas canvas;
    canvas.show();
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    QTest::keyClicks(canvas.textBox(), "twice");
    canvas.completeScribble();
    const QImage once = canvas.image();
    canvas.completeScribble();
    QCOMPARE(canvas.history().size(), 2);
    QVERIFY(canvas.history().at(1).image.isNull());
    canvas.undo();
    QCOMPARE(canvas.image(), once);
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
}

void tst_ScribbleArea_text::hugeTextIsHarmless()
{
    Canvas canvas;
    canvas.show();
    canvas.setPaintTypeToText();
    canvas.drag(QPoint(20, 30), QPoint(120, 100));
    canvas.textBox()->insertPlainText(QString(100000, 'x'));
    canvas.completeScribble();
    QVERIFY(canvas.image() != picture());
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
}

void tst_ScribbleArea_text::committedTextIsDrawnWithoutCursor()
{
    Canvas canvas;
    QVERIFY(isActive(canvas));
    canvas.setTextFontSize(20);
    canvas.setTextColor(Qt::red);
    startText(canvas);
    QTest::keyClicks(canvas.textBox(), "Hill");
    QTest::keyClick(canvas.textBox(), Qt::Key_Return);
    QTest::keyClicks(canvas.textBox(), "HE");
    QVERIFY(canvas.textBox()->hasFocus());
    canvas.completeScribble();
    // The noise beside the glyphs is that of the picture.
    const QImage expected = withText(picture(), kBox, fontOf(20), {{"Hill\nHE", Qt::red}});
    QVERIFY(expected != picture());
    QCOMPARE(canvas.image(), expected);
}

void tst_ScribbleArea_text::textIsCutAtTheBox()
{
    Canvas canvas;
    QVERIFY(isActive(canvas));
    canvas.setTextFontSize(30);
    canvas.setTextColor(Qt::red);
    startText(canvas);
    canvas.textBox()->setPlainText("HHHHHHHHHHHH\nHHH\nHHH");
    canvas.completeScribble();
    QCOMPARE(canvas.image(),
             withText(picture(), kBox, fontOf(30), {{"HHHHHHHHHHHH\nHHH\nHHH", Qt::red}}));
}

void tst_ScribbleArea_text::fontSizeAppliesToWhatIsTypedAlready()
{
    Canvas canvas;
    QVERIFY(isActive(canvas));
    canvas.setTextColor(Qt::red);
    canvas.setTextFontSize(10);
    startText(canvas);
    QTest::keyClicks(canvas.textBox(), "Ab");
    canvas.setTextFontSize(24);
    QTest::keyClicks(canvas.textBox(), "cd");
    canvas.completeScribble();
    QCOMPARE(canvas.image(), withText(picture(), kBox, fontOf(24), {{"Abcd", Qt::red}}));
}

void tst_ScribbleArea_text::colourAppliesToWhatIsTypedNext()
{
    Canvas canvas;
    QVERIFY(isActive(canvas));
    canvas.setTextFontSize(20);
    startText(canvas);
    canvas.setTextColor(Qt::red);
    QTest::keyClicks(canvas.textBox(), "Ab");
    canvas.setTextColor(Qt::green);
    QTest::keyClicks(canvas.textBox(), "cd");
    canvas.completeScribble();
    QCOMPARE(canvas.image(),
             withText(picture(), kBox, fontOf(20), {{"Ab", Qt::red}, {"cd", Qt::green}}));
}

void tst_ScribbleArea_text::colourAndSizeSurviveIntoTheNextText()
{
    Canvas canvas;
    QVERIFY(isActive(canvas));
    canvas.setTextFontSize(20);
    canvas.setTextColor(Qt::red);
    startText(canvas);
    QTest::keyClicks(canvas.textBox(), "one");
    canvas.completeScribble();
    canvas.undo();
    startText(canvas);
    QTest::keyClicks(canvas.textBox(), "two");
    canvas.completeScribble();
    QCOMPARE(canvas.image(), withText(picture(), kBox, fontOf(20), {{"two", Qt::red}}));
}

void tst_ScribbleArea_text::colourSurvivesErasingWhatWasTyped()
{
    Canvas canvas;
    QVERIFY(isActive(canvas));
    canvas.setTextFontSize(20);
    canvas.setTextColor(Qt::red);
    startText(canvas);
    QTest::keyClicks(canvas.textBox(), "o");
    QTest::keyClick(canvas.textBox(), Qt::Key_Backspace);
    QTest::keyClicks(canvas.textBox(), "two");
    canvas.completeScribble();
    QCOMPARE(canvas.image(), withText(picture(), kBox, fontOf(20), {{"two", Qt::red}}));
}

QTEST_MAIN(tst_ScribbleArea_text)
#include "tst_ScribbleArea_text.moc"
