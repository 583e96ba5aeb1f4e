// SPDX-License-Identifier: MIT
#include "CaptureProbe.h"
#include "Screen.h"

#include <QAbstractItemView>

namespace
{

const QRect kRegion(QPoint(400, 200), QPoint(899, 499));
const char* const kFinish = "Return";
const char* const kCancel = "Escape";

void pressKey(const QString& key)
{
    xdotool({"key", key});
}

/// A key sequence as xdotool writes it.
QString nameOfKeys(QKeySequence::StandardKey key)
{
    return QKeySequence(key).toString(QKeySequence::PortableText).toLower();
}

void clickOn(const QWidget* widget)
{
    clickPointer(widget->mapToGlobal(widget->rect().center()));
}

void useTool(const CaptureProbe& capture, MainItem tool)
{
    clickOn(capture.at(tool));
    QTRY_VERIFY(capture.button(tool)->isChecked());
    // A click leaves the focus where it was, so that a text goes on being typed.
    QVERIFY(!capture.at(tool)->hasFocus());
}

void focus(const CaptureProbe& capture, MainItem tool, QWidget* widget)
{
    useTool(capture, tool);
    widget->setFocus();
    QVERIFY(widget->hasFocus());
}

} // namespace

using Way = std::function<void(const CaptureProbe& capture)>;
Q_DECLARE_METATYPE(Way)

/// The keyboard of a real display, wherever the focus is.
class tst_ScreenCaptureWnd_keys : public CaptureTest
{
    Q_OBJECT

private slots:
    void init();
    void keyEnds_data();
    void keyEnds();
    void enterChoosesInTheOpenFontSizeList();
    void keysWhileIdleDoNothing_data();
    void keysWhileIdleDoNothing();
    void undoAndRedoHaveTheirKeys();
    void undoKeyDropsTheRegion();
    void spaceClicksTheFocusedToolOnly();

private:
    void expectEnd(bool finished);
};

void tst_ScreenCaptureWnd_keys::init()
{
    CaptureTest::init();
    // A window that goes away before the window manager has shown it is on the screen later on.
    QVERIFY(QTest::qWaitForWindowActive(window()));
    m_capture->drag(kRegion);
    QVERIFY(m_capture->mainBar()->isVisible());
}

void tst_ScreenCaptureWnd_keys::expectEnd(bool finished)
{
    QTRY_COMPARE(m_receiver->count, 1);
    QCOMPARE(m_receiver->finished, finished);
    QCOMPARE(m_receiver->image.size(), finished ? kRegion.size() : QSize(0, 0));
    QTRY_VERIFY(m_capture->isGone());
}

void tst_ScreenCaptureWnd_keys::keyEnds_data()
{
    QTest::addColumn<Way>("prepare");
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("finished");
    const auto row = [](const QByteArray& focus, const char* key, const Way& prepare) {
        QTest::newRow(key + QByteArray(", ") + focus) << prepare << key << (key != kCancel);
    };
    using Probe = CaptureProbe;
    for (const char* key : {kFinish, kCancel}) {
        row("no tool", key, [](const Probe&) {});
        row("font size box", key, [](const Probe& c) { focus(c, Text, c.fontBox()); });
        row("width slider", key, [](const Probe& c) { focus(c, Ellipse, c.widthSlider()); });
        row("blur slider", key, [](const Probe& c) { focus(c, Mosaic, c.blurSlider()); });
    }
    for (const MainItem tool : kTools)
        row(nameOf(tool), kFinish, [tool](const Probe& c) { focus(c, tool, c.at(tool)); });
    row("mosaic", kCancel, [](const Probe& c) { focus(c, Mosaic, c.at(Mosaic)); });
    row("mosaic", "KP_Enter", [](const Probe& c) { focus(c, Mosaic, c.at(Mosaic)); });
    for (const int times : {1, 4, 7, 9, 12}) {
        row("after Tabs: " + QByteArray::number(times), kFinish, [times](const Probe& c) {
            useTool(c, Rectangle);
            for (int i = 0; i < times; ++i) {
                const QPointer<QWidget> before = QApplication::focusWidget();
                pressKey("Tab");
                QTRY_VERIFY(QApplication::focusWidget() != before);
            }
            QCOMPARE(c.checkedTools(), Tools{Rectangle});
        });
    }
}

void tst_ScreenCaptureWnd_keys::keyEnds()
{
    QFETCH(Way, prepare);
    QFETCH(QString, key);
    QFETCH(bool, finished);
    prepare(*m_capture);
    pressKey(key);
    expectEnd(finished);
}

void tst_ScreenCaptureWnd_keys::enterChoosesInTheOpenFontSizeList()
{
    useTool(*m_capture, Text);
    clickOn(m_capture->fontBox());
    const QAbstractItemView* list = m_capture->fontBox()->view();
    QTRY_VERIFY(list->isVisible());
    QTRY_VERIFY(list->window()->windowHandle()->isExposed());
    pressKey("Down");
    QTRY_COMPARE(list->currentIndex().row(), 1);
    pressKey("Return");
    QTRY_VERIFY(!list->isVisible());
    QTRY_COMPARE(m_capture->fontBox()->currentText(), QString("9"));
    QCOMPARE(m_capture->textBox()->font().pointSize(), 9);
    QCOMPARE(m_receiver->count, 0);
    QVERIFY(!m_capture->fontBox()->hasFocus());
    pressKey("Return");
    expectEnd(true);
}

void tst_ScreenCaptureWnd_keys::keysWhileIdleDoNothing_data()
{
    QTest::addColumn<Way>("prepare");
    const auto row = [](const char* name, const Way& prepare) { QTest::newRow(name) << prepare; };
    using Probe = CaptureProbe;
    row("after a region", [](const Probe&) {});
    row("after a tool was used", [](const Probe& c) { useTool(c, Scribble); });
    row("after a tool was reached by the keyboard",
        [](const Probe& c) { c.at(Ellipse)->setFocus(); });
    row("after a setting was used", [](const Probe& c) { focus(c, Scribble, c.widthSlider()); });
    row("at first", Way());
}

// Escape comes after them and still finds a capture to cancel.
void tst_ScreenCaptureWnd_keys::keysWhileIdleDoNothing()
{
    QFETCH(Way, prepare);
    if (prepare) {
        prepare(*m_capture);
        window()->reset();
    } else {
        restart();
        QVERIFY(QTest::qWaitForWindowActive(window()));
    }
    for (const char* key : {"Return", "KP_Enter", "space", "Tab", "space", "ctrl+shift+z"})
        pressKey(key);
    pressKey("Escape");
    QTRY_COMPARE(m_receiver->count, 1);
    QVERIFY(!m_receiver->finished);
    QVERIFY(m_capture->isGone() || m_capture->checkedTools().isEmpty());
    QTRY_VERIFY(m_capture->isGone());
}

void tst_ScreenCaptureWnd_keys::undoAndRedoHaveTheirKeys()
{
    QCOMPARE(nameOfKeys(QKeySequence::Undo), QString("ctrl+z"));
    useTool(*m_capture, Scribble);
    const QImage before = m_capture->canvas()->image();
    m_capture->stroke(QPoint(20, 20), QPoint(150, 90));
    const QImage after = m_capture->canvas()->image();
    QVERIFY(after != before);
    for (int round = 0; round < 2; ++round) {
        pressKey(nameOfKeys(QKeySequence::Undo));
        QTRY_COMPARE(m_capture->canvas()->image(), before);
        QVERIFY(m_capture->button(Redo)->isEnabled());
        pressKey(nameOfKeys(QKeySequence::Redo));
        QTRY_COMPARE(m_capture->canvas()->image(), after);
        QVERIFY(!m_capture->button(Redo)->isEnabled());
    }
}

void tst_ScreenCaptureWnd_keys::undoKeyDropsTheRegion()
{
    pressKey("ctrl+z");
    QTRY_VERIFY(m_capture->mainBar()->isHidden());
    QVERIFY(!m_capture->region()->isVisible());
    QVERIFY(window()->isVisible());
    // The shortcut of a hidden bar does nothing more.
    pressKey("ctrl+z");
    pressKey("Escape");
    expectEnd(false);
}

void tst_ScreenCaptureWnd_keys::spaceClicksTheFocusedToolOnly()
{
    // The done button does not take it, though it is the default one.
    pressKey("space");
    useTool(*m_capture, Ellipse);
    pressKey("space");
    QCOMPARE(m_capture->checkedTools(), Tools{Ellipse});
    m_capture->at(Ellipse)->setFocus();
    pressKey("space");
    QTRY_VERIFY(m_capture->checkedTools().isEmpty());
    QCOMPARE(ScribbleAreaAccess::graphState(*m_capture->canvas()),
             int(ScribbleArea::GRAPH_ELLIPSE));
    m_capture->at(Mosaic)->setFocus();
    pressKey("space");
    QTRY_COMPARE(m_capture->checkedTools(), Tools{Mosaic});
    QCOMPARE(m_receiver->count, 0);
}

QTEST_MAIN(tst_ScreenCaptureWnd_keys)
#include "tst_ScreenCaptureWnd_keys.moc"
