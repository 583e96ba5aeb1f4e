// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Canvas.h"

#include <functional>

namespace
{

const QRect kFrame = edges(20, 30, 150, 120);
const QRect kBox = edges(24, 34, 146, 116);

QFont fontOf(int pointSize)
{
    QFont font = QApplication::font("QTextEdit");
    font.setPointSize(pointSize);
    return font;
}

/// A canvas of which the text box gets the focus.
class TextCanvas : public Canvas
{
public:
    TextCanvas()
    {
        show();
        activateWindow();
        [&] { QVERIFY(QTest::qWaitForWindowActive(this)); }();
        setPaintTypeToText();
    }
    void type(const QString& text)
    {
        QVERIFY(textBox()->hasFocus());
        QTest::keyClicks(textBox(), text);
    }
};

using Typing = std::function<void(TextCanvas&)>;

} // namespace

Q_DECLARE_METATYPE(Typing)
Q_DECLARE_METATYPE(QVector<ColouredText>)

/// Text boxes.
class tst_ScribbleArea_text : public BehaviourTest
{
    Q_OBJECT

private slots:
    void textBoxSettings();
    void typedTextIsRenderedAsItLooks_data();
    void typedTextIsRenderedAsItLooks();
    void blanksLeaveNoTrace();
    void textBoxFollowsTheFrame();
    void fontSizeAndColourMakeTheBox();
    void undoHidesTheBoxWhateverTheTool();
    void secondCommitInTextModeHoldsNoPixels();
    void hugeTextIsHarmless();
};

void tst_ScribbleArea_text::textBoxSettings()
{
    TextCanvas canvas;
    canvas.drag(kFrame);
    const QTextEdit* box = canvas.textBox();
    QVERIFY(box->isVisible());
    QVERIFY(canvas.frame()->isVisible());
    QCOMPARE(box->parentWidget(), &canvas);
    QVERIFY(box->windowFlags() & Qt::FramelessWindowHint);
    QCOMPARE(box->geometry(), kBox);
    QCOMPARE(box->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(box->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(box->lineWrapMode(), QTextEdit::NoWrap);
    QVERIFY(!box->isUndoRedoEnabled());
    QCOMPARE(box->styleSheet(),
             QString("background:rgba(0,0,0,0%); border-width:0; border-style:outset}"));
}

void tst_ScribbleArea_text::typedTextIsRenderedAsItLooks_data()
{
    QTest::addColumn<Typing>("typing");
    QTest::addColumn<int>("size");
    QTest::addColumn<QVector<ColouredText>>("expected");
    const auto add = [](const char* name, int size, const QVector<ColouredText>& expected,
                        const Typing& typing) {
        QTest::newRow(name) << typing << size << expected;
    };
    add("without cursor", 20, {{"Hill\nHE", Qt::red}}, [](TextCanvas& canvas) {
        canvas.type("Hill");
        QTest::keyClick(canvas.textBox(), Qt::Key_Return);
        canvas.type("HE");
    });
    add("cut at the box", 20, {{"HHHHHHHHHHHH\nHHH\nHHH\nHHH\nHHH", Qt::red}},
        [](TextCanvas& canvas) {
            canvas.textBox()->setPlainText("HHHHHHHHHHHH\nHHH\nHHH\nHHH\nHHH");
        });
    add("size of what is typed already", 24, {{"Abcd", Qt::red}}, [](TextCanvas& canvas) {
        canvas.type("Ab");
        canvas.setTextFontSize(24);
        canvas.type("cd");
    });
    add("colour of what is typed next", 20, {{"Ab", Qt::red}, {"cd", Qt::green}},
        [](TextCanvas& canvas) {
            canvas.type("Ab");
            canvas.setTextColor(Qt::green);
            canvas.type("cd");
        });
    add("colour and size of the text before", 20, {{"two", Qt::red}}, [](TextCanvas& canvas) {
        canvas.type("one");
        canvas.completeScribble();
        canvas.undo();
        canvas.drag(kFrame);
        canvas.type("two");
    });
    add("colour of what was erased", 20, {{"two", Qt::red}}, [](TextCanvas& canvas) {
        canvas.type("o");
        QTest::keyClick(canvas.textBox(), Qt::Key_Backspace);
        canvas.type("two");
    });
    add("composed by an input method", 20, {{"\u00e9a", Qt::red}}, [](TextCanvas& canvas) {
        QInputMethodEvent composing("\u00b4", {});
        QCoreApplication::sendEvent(canvas.textBox(), &composing);
        QInputMethodEvent composed;
        composed.setCommitString("\u00e9");
        QCoreApplication::sendEvent(canvas.textBox(), &composed);
        canvas.type("a");
    });
    add("colours after an erasure", 20, {{"Ab", Qt::red}, {"cd", Qt::green}},
        [](TextCanvas& canvas) {
            canvas.type("o");
            QTest::keyClick(canvas.textBox(), Qt::Key_Backspace);
            canvas.type("Ab");
            canvas.setTextColor(Qt::green);
            canvas.type("cd");
        });
}

void tst_ScribbleArea_text::typedTextIsRenderedAsItLooks()
{
    QFETCH(Typing, typing);
    QFETCH(int, size);
    QFETCH(QVector<ColouredText>, expected);
    TextCanvas canvas;
    canvas.setTextFontSize(20);
    canvas.setTextColor(Qt::red);
    canvas.drag(kFrame);
    typing(canvas);
    canvas.completeScribble();
    // The noise beside the glyphs is that of the picture.
    const QImage written = withText(picture(), kBox, fontOf(size), expected);
    QVERIFY(written != picture());
    QCOMPARE(canvas.image(), written);
    QVERIFY(canvas.modified());
    QVERIFY(canvas.textBox()->isHidden());
    QVERIFY(!canvas.frame()->isVisible());
    QCOMPARE(canvas.entries(), 1);
    QCOMPARE(canvas.areaOf(0), inPixels(kBox));
}

void tst_ScribbleArea_text::blanksLeaveNoTrace()
{
    TextCanvas canvas;
    canvas.drag(kFrame);
    canvas.textBox()->setPlainText("  \n \t ");
    canvas.completeScribble();
    QCOMPARE(canvas.image(), picture());
    QCOMPARE(canvas.entries(), 0);
    QVERIFY(!canvas.modified());
    QVERIFY(canvas.textBox()->isHidden());
}

void tst_ScribbleArea_text::textBoxFollowsTheFrame()
{
    TextCanvas canvas;
    canvas.drag(kFrame);
    canvas.textBox()->setPlainText("abc");
    canvas.drag(QPoint(40, 30), QPoint(50, 40));
    QCOMPARE(canvas.frame()->rect(), kFrame.translated(10, 10));
    QCOMPARE(canvas.textBox()->geometry(), kBox.translated(10, 10));
    canvas.completeScribble();
    // The next text starts empty, in the same box.
    QTextEdit* box = canvas.textBox();
    canvas.drag(kFrame);
    QCOMPARE(canvas.textBox(), box);
    QVERIFY(box->toPlainText().isEmpty());
}

void tst_ScribbleArea_text::fontSizeAndColourMakeTheBox()
{
    Canvas canvas;
    canvas.setPaintTypeToGraph();
    canvas.drag(kFrame);
    QVERIFY(!canvas.textBox());
    canvas.setTextFontSize(22);
    QCOMPARE(canvas.textBox()->font().pointSize(), 22);
    QCOMPARE(canvas.textBox()->geometry(), kBox);
    QVERIFY(canvas.textBox()->isHidden());
    Canvas other;
    other.setTextColor(Qt::magenta);
    QCOMPARE(other.textBox()->textColor(), QColor(Qt::magenta));
    QVERIFY(other.textBox()->isHidden());
}

void tst_ScribbleArea_text::undoHidesTheBoxWhateverTheTool()
{
    Canvas canvas;
    canvas.show();
    canvas.setTextFontSize(20);
    canvas.drag(kFrame);
    canvas.textBox()->show();
    canvas.undo();
    QVERIFY(canvas.textBox()->isHidden());
    QVERIFY(!canvas.frame()->isVisible());
    QCOMPARE(canvas.image(), picture());
}

void tst_ScribbleArea_text::secondCommitInTextModeHoldsNoPixels()
{
    TextCanvas canvas;
    canvas.drag(kFrame);
    canvas.type("twice");
    canvas.completeScribble();
    const QImage once = canvas.image();
    canvas.completeScribble();
    QCOMPARE(canvas.entries(), 2);
    QVERIFY(canvas.areaOf(1).isEmpty());
    canvas.undo();
    QCOMPARE(canvas.image(), once);
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
}

void tst_ScribbleArea_text::hugeTextIsHarmless()
{
    TextCanvas canvas;
    canvas.drag(kFrame);
    canvas.textBox()->insertPlainText(QString(100000, 'x'));
    canvas.completeScribble();
    QVERIFY(canvas.image() != picture());
    canvas.undo();
    QCOMPARE(canvas.image(), picture());
}

QTEST_MAIN(tst_ScribbleArea_text)
#include "tst_ScribbleArea_text.moc"
