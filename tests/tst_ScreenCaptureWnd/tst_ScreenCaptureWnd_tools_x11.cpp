// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "Screen.h"
#include "ToolBarsProbe.h"

#include <QAbstractItemView>
#include <QTemporaryDir>

Q_DECLARE_METATYPE(MainItem)

namespace
{

const QRect kRegion(QPoint(400, 200), QPoint(899, 499));
const QColor kSkyBlue(56, 148, 228);

void click(const QWidget* widget, const QPoint& p)
{
    xdotool(moveTo(widget->mapToGlobal(p)) << "click"
                                           << "1");
}

void click(const QWidget* widget)
{
    click(widget, widget->rect().center());
}

void pressKey(const QString& key)
{
    xdotool({"key", key});
}

/// A key sequence as xdotool writes it.
QString nameOfKeys(QKeySequence::StandardKey key)
{
    return QKeySequence(key).toString(QKeySequence::PortableText).toLower();
}

} // namespace

/// The tool bars under real mouse and keyboard, over a real desktop.
class tst_ScreenCaptureWnd_tools_x11 : public BehaviourTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void barsAreSeenOverTheCanvas();
    void secondRegionShowsItsOwnPixels();
    void colorAndWidthReachThePicture();
    void colorIsThereInTheNextCapture();

    void enterFinishesAfterAToolWasClicked_data();
    void enterFinishesAfterAToolWasClicked();
    void enterFinishesWithoutATool();
    void enterFinishesFromEverySetting_data();
    void enterFinishesFromEverySetting();
    void enterFinishesWhereverTabLeads_data();
    void enterFinishesWhereverTabLeads();
    void enterChoosesInTheOpenFontSizeList();
    void keysWhileIdleDoNothing_data();
    void keysWhileIdleDoNothing();
    void escapeCancels_data();
    void escapeCancels();
    void undoAndRedoHaveTheirKeys();
    void undoKeyDropsTheRegion();
    void spaceClicksTheFocusedToolOnly();

private:
    void useTool(MainItem tool);
    void expectFinished();
    const ToolBarsProbe& bars() const { return *m_capture; }

    QTemporaryDir m_settings;
    QScopedPointer<Desktop> m_desktop;
    QScopedPointer<ToolBarsProbe> m_capture;
    QScopedPointer<Receiver> m_receiver;
};

void tst_ScreenCaptureWnd_tools_x11::initTestCase()
{
    QCOMPARE(QGuiApplication::platformName(), QString("xcb"));
    ScreenCaptureTool::init(m_settings.path());
    m_desktop.reset(new Desktop(5));
    QTRY_COMPARE(screenshot(), m_desktop->picture());
}

/// Begins a capture with a region and no tool.
void tst_ScreenCaptureWnd_tools_x11::init()
{
    BehaviourTest::init();
    QTRY_COMPARE(screenshot(), m_desktop->picture());
    m_receiver.reset(new Receiver);
    m_capture.reset(new ToolBarsProbe);
    m_capture->window()->connectTo(m_receiver.data(), SLOT(onCaptured(QImage, bool)));
    m_capture->window()->showFullDesktop(true);
    QVERIFY(QTest::qWaitForWindowActive(m_capture->window()));
    m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
    QVERIFY(m_capture->mainBar()->isVisible());
}

void tst_ScreenCaptureWnd_tools_x11::cleanup()
{
    m_capture.reset();
    BehaviourTest::cleanup();
}

void tst_ScreenCaptureWnd_tools_x11::useTool(MainItem tool)
{
    click(bars().at(tool));
    QTRY_VERIFY(bars().button(tool)->isChecked());
}

void tst_ScreenCaptureWnd_tools_x11::expectFinished()
{
    QTRY_COMPARE(m_receiver->count, 1);
    QVERIFY(m_receiver->finished);
    QCOMPARE(m_receiver->image.size(), kRegion.size());
    QTRY_VERIFY(bars().isGone());
}

void tst_ScreenCaptureWnd_tools_x11::barsAreSeenOverTheCanvas()
{
    const QRect all(QPoint(0, 0), screenRect().bottomRight());
    bars().window()->reset();
    bars().drag(all.topLeft(), all.bottomRight());
    useTool(Scribble);
    QVERIFY(bars().canvas()->geometry().contains(bars().mainBar()->geometry()));
    for (QWidget* bar : {bars().mainBar(), bars().subBar()}) {
        QTRY_COMPARE(screenshot().copy(bar->geometry()),
                     bar->grab().toImage().convertToFormat(QImage::Format_RGB32));
        QCOMPARE(screenshot().pixelColor(bar->geometry().topLeft()), QColor(Qt::white));
    }
    // Nor does the canvas take the mouse from them.
    useTool(Ellipse);
}

void tst_ScreenCaptureWnd_tools_x11::secondRegionShowsItsOwnPixels()
{
    useTool(Scribble);
    bars().stroke(QPoint(100, 100), QPoint(200, 150));
    QVERIFY(bars().canvas()->image() != bars().window()->captureImage());
    bars().window()->reset();
    const QRect second(QPoint(50, 60), QPoint(349, 259));
    bars().drag(second.topLeft(), second.bottomRight());
    useTool(Ellipse);
    QCOMPARE(bars().canvas()->image().convertToFormat(QImage::Format_RGB32),
             m_desktop->picture().copy(second));
    const QRect inside = second.adjusted(10, 10, -10, -10);
    QTRY_COMPARE(screenshot().copy(inside), m_desktop->picture().copy(inside));
}

void tst_ScreenCaptureWnd_tools_x11::colorAndWidthReachThePicture()
{
    useTool(Rectangle);
    click(bars().palette(), bars().palette()->cellRect(1, 5).center());
    QTRY_COMPARE(bars().pen(Rectangle).color(), kSkyBlue);
    bars().widthSlider()->setFocus();
    pressKey("End");
    QTRY_COMPARE(bars().pen(Rectangle).width(), 30);
    bars().stroke(QPoint(100, 100), QPoint(300, 200));
    pressKey("Return");
    expectFinished();
    const QImage picture = m_receiver->image.convertToFormat(QImage::Format_RGB32);
    QImage expected = m_desktop->picture().copy(kRegion);
    QPainter painter(&expected);
    painter.setPen(QPen(kSkyBlue, 30, Qt::SolidLine, Qt::RoundCap, Qt::MiterJoin));
    painter.drawRect(QRect(QPoint(100, 100), QPoint(300, 200)));
    painter.end();
    QCOMPARE(picture, expected);
}

void tst_ScreenCaptureWnd_tools_x11::colorIsThereInTheNextCapture()
{
    useTool(Arrow);
    click(bars().palette(), bars().palette()->cellRect(0, 6).center());
    const QColor purple(128, 0, 128);
    QTRY_COMPARE(bars().pen(Arrow).color(), purple);
    pressKey("Escape");
    QTRY_VERIFY(bars().isGone());
    m_capture.reset(new ToolBarsProbe);
    m_capture->window()->showFullDesktop(true);
    // A window that goes away before the window manager has shown it is on the screen later on.
    QVERIFY(QTest::qWaitForWindowActive(m_capture->window()));
    bars().annotate(kRegion, Arrow);
    QCOMPARE(bars().pen(Arrow).color(), purple);
    QCOMPARE(bars().shownColor(), purple);
}

void tst_ScreenCaptureWnd_tools_x11::enterFinishesAfterAToolWasClicked_data()
{
    QTest::addColumn<MainItem>("tool");
    QTest::addColumn<QString>("key");
    for (const MainItem tool : kTools)
        QTest::newRow(nameOf(tool)) << tool << "Return";
    QTest::newRow("mosaic, on the keypad") << Mosaic << "KP_Enter";
}

void tst_ScreenCaptureWnd_tools_x11::enterFinishesAfterAToolWasClicked()
{
    QFETCH(MainItem, tool);
    QFETCH(QString, key);
    useTool(tool);
    // A click leaves the focus where it was, so that a text goes on being typed.
    QVERIFY(!bars().at(tool)->hasFocus());
    bars().at(tool)->setFocus();
    pressKey(key);
    expectFinished();
}

void tst_ScreenCaptureWnd_tools_x11::enterFinishesWithoutATool()
{
    pressKey("Return");
    expectFinished();
    QCOMPARE(m_receiver->image.convertToFormat(QImage::Format_RGB32),
             m_desktop->picture().copy(kRegion));
}

void tst_ScreenCaptureWnd_tools_x11::enterFinishesFromEverySetting_data()
{
    QTest::addColumn<MainItem>("tool");
    QTest::addColumn<int>("setting");
    QTest::newRow("font size box") << Text << int(FontBox);
    QTest::newRow("width slider") << Ellipse << int(WidthPicker);
    QTest::newRow("blur slider") << Mosaic << int(BlurPanel);
}

void tst_ScreenCaptureWnd_tools_x11::enterFinishesFromEverySetting()
{
    QFETCH(MainItem, tool);
    QFETCH(int, setting);
    useTool(tool);
    QWidget* widget = bars().fontBox();
    if (setting != FontBox)
        widget = bars().at(SubItem(setting))->findChild<QSlider*>();
    widget->setFocus();
    QVERIFY(widget->hasFocus());
    pressKey("Return");
    expectFinished();
}

void tst_ScreenCaptureWnd_tools_x11::enterFinishesWhereverTabLeads_data()
{
    QTest::addColumn<int>("times");
    for (const int times : {1, 4, 7, 9, 12})
        QTest::addRow("%d", times) << times;
}

void tst_ScreenCaptureWnd_tools_x11::enterFinishesWhereverTabLeads()
{
    QFETCH(int, times);
    useTool(Rectangle);
    for (int i = 0; i < times; ++i) {
        const QPointer<QWidget> before = QApplication::focusWidget();
        pressKey("Tab");
        QTRY_VERIFY(QApplication::focusWidget() != before);
    }
    QCOMPARE(bars().checkedTools(), QList<MainItem>{Rectangle});
    pressKey("Return");
    expectFinished();
}

void tst_ScreenCaptureWnd_tools_x11::enterChoosesInTheOpenFontSizeList()
{
    useTool(Text);
    click(bars().fontBox());
    const QAbstractItemView* list = bars().fontBox()->view();
    QTRY_VERIFY(list->isVisible());
    QTRY_VERIFY(list->window()->windowHandle()->isExposed());
    pressKey("Down");
    QTRY_COMPARE(list->currentIndex().row(), 1);
    pressKey("Return");
    QTRY_VERIFY(!list->isVisible());
    QTRY_COMPARE(bars().fontBox()->currentText(), QString("9"));
    QCOMPARE(bars().canvas()->findChild<QTextEdit*>()->font().pointSize(), 9);
    QCOMPARE(m_receiver->count, 0);
    QVERIFY(!bars().fontBox()->hasFocus());
    pressKey("Return");
    expectFinished();
}

void tst_ScreenCaptureWnd_tools_x11::keysWhileIdleDoNothing_data()
{
    QTest::addColumn<QString>("focus");
    QTest::newRow("at first") << "first";
    QTest::newRow("after a region") << "region";
    QTest::newRow("after a tool was used") << "tool";
    QTest::newRow("after a tool was reached by the keyboard") << "key";
    QTest::newRow("after a setting was used") << "setting";
}

// Escape comes after them and still finds a capture to cancel.
void tst_ScreenCaptureWnd_tools_x11::keysWhileIdleDoNothing()
{
    QFETCH(QString, focus);
    if (focus == "first") {
        m_capture.reset();
        m_capture.reset(new ToolBarsProbe);
        m_capture->window()->connectTo(m_receiver.data(), SLOT(onCaptured(QImage, bool)));
        m_capture->window()->showFullDesktop(true);
        QVERIFY(QTest::qWaitForWindowActive(m_capture->window()));
    }
    if (focus == "tool" || focus == "setting")
        useTool(Scribble);
    if (focus == "key")
        bars().at(Ellipse)->setFocus();
    if (focus == "setting")
        bars().widthSlider()->setFocus();
    bars().window()->reset();
    for (const char* key : {"Return", "KP_Enter", "space", "Tab", "space", "ctrl+shift+z"})
        pressKey(key);
    pressKey("Escape");
    QTRY_COMPARE(m_receiver->count, 1);
    QVERIFY(!m_receiver->finished);
    QVERIFY(bars().isGone() || bars().checkedTools().isEmpty());
    QTRY_VERIFY(bars().isGone());
}

void tst_ScreenCaptureWnd_tools_x11::escapeCancels_data()
{
    QTest::addColumn<QString>("focus");
    for (const char* focus : {"none", "tool", "font size box", "width slider"})
        QTest::newRow(focus) << focus;
}

void tst_ScreenCaptureWnd_tools_x11::escapeCancels()
{
    QFETCH(QString, focus);
    if (focus == "tool")
        useTool(Ellipse);
    if (focus == "font size box") {
        useTool(Text);
        bars().fontBox()->setFocus();
    }
    if (focus == "width slider") {
        useTool(Arrow);
        bars().widthSlider()->setFocus();
    }
    pressKey("Escape");
    QTRY_COMPARE(m_receiver->count, 1);
    QVERIFY(!m_receiver->finished);
    QVERIFY(m_receiver->image.isNull());
    QTRY_VERIFY(bars().isGone());
}

void tst_ScreenCaptureWnd_tools_x11::undoAndRedoHaveTheirKeys()
{
    useTool(Scribble);
    const QImage before = bars().canvas()->image();
    bars().stroke(QPoint(20, 20), QPoint(150, 90));
    const QImage after = bars().canvas()->image();
    QVERIFY(after != before);
    for (int round = 0; round < 2; ++round) {
        pressKey(nameOfKeys(QKeySequence::Undo));
        QTRY_COMPARE(bars().canvas()->image(), before);
        QVERIFY(bars().button(Redo)->isEnabled());
        pressKey(nameOfKeys(QKeySequence::Redo));
        QTRY_COMPARE(bars().canvas()->image(), after);
        QVERIFY(!bars().button(Redo)->isEnabled());
    }
    QCOMPARE(nameOfKeys(QKeySequence::Undo), QString("ctrl+z"));
}

void tst_ScreenCaptureWnd_tools_x11::undoKeyDropsTheRegion()
{
    pressKey("ctrl+z");
    QTRY_VERIFY(bars().mainBar()->isHidden());
    QVERIFY(!bars().region()->isVisible());
    QVERIFY(bars().window()->isVisible());
    // The shortcut of a hidden bar does nothing more.
    pressKey("ctrl+z");
    pressKey("Escape");
    QTRY_COMPARE(m_receiver->count, 1);
    QVERIFY(!m_receiver->finished);
}

void tst_ScreenCaptureWnd_tools_x11::spaceClicksTheFocusedToolOnly()
{
    // The done button does not take it, though it is the default one.
    pressKey("space");
    useTool(Ellipse);
    pressKey("space");
    QCOMPARE(bars().checkedTools(), QList<MainItem>{Ellipse});
    bars().at(Ellipse)->setFocus();
    pressKey("space");
    QTRY_VERIFY(bars().checkedTools().isEmpty());
    QVERIFY(bars().window()->isVisible());
    QCOMPARE(ScribbleAreaAccess::graphState(*bars().canvas()), int(ScribbleArea::GRAPH_ELLIPSE));
    bars().at(Mosaic)->setFocus();
    pressKey("space");
    QTRY_COMPARE(bars().checkedTools(), QList<MainItem>{Mosaic});
    QCOMPARE(m_receiver->count, 0);
}

QTEST_MAIN(tst_ScreenCaptureWnd_tools_x11)
#include "tst_ScreenCaptureWnd_tools_x11.moc"
