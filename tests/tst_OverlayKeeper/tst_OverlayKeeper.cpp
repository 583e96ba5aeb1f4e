// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "NativeDesktop.h"
#include "OverlayKeeper.h"
#include "XServer.h"

#include <QApplication>
#include <QDialog>
#include <QProcess>
#include <QWindow>

namespace
{

const QRect kOverlay(100, 100, 400, 300);
const QRect kOther(200, 200, 100, 100);
constexpr QPoint kShared(250, 250);
const Qt::WindowFlags kUnmanaged = Qt::BypassWindowManagerHint;

xcb_window_t idOf(const QWidget& widget)
{
    return static_cast<xcb_window_t>(widget.windowHandle()->winId());
}

bool isUnmanaged(const QWidget& widget)
{
    return widget.windowHandle()->flags() & kUnmanaged;
}

} // namespace

/// What other programs and other windows of its own application do to a window that is kept.
class tst_OverlayKeeper : public BehaviourTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void overlayGetsTheKeyboard();
    void keyboardIsTakenBack_data();
    void keyboardIsTakenBack();
    void keyboardIsTakenBackAgainAndAgain();
    void keyboardIsGivenBackAtTheEnd_data();
    void keyboardIsGivenBackAtTheEnd();
    void formerHolderMayBeGone();

    void overlayIsAboveAManagedWindow();
    void overlayThatIsShownAgainIsAbove();
    void overlayIsAboveAManagedWindowThatIsRaised();
    void overlayStaysWhereItIsWhenAWindowBelowIsLowered();
    void unmanagedWindowStaysAbove();
    void ownPopupStaysAbove_data();
    void ownPopupStaysAbove();

    void dialogIsUnmanagedUntilHidden_data();
    void dialogIsUnmanagedUntilHidden();
    void dialogThatIsOpenAtTheEndIsManagedAgain();
    void dialogThatIsNeverManagedStaysSo();
    void dialogThatWasOpenBeforeStaysBelow();
    void dialogHasTheKeyboard();
    void keyboardRevertsToThePointer();
    void overlayStaysAboveWhatAppearsAsItGetsTheKeyboard();
    void dialogIsAboveAManagedWindow();
    void dialogThatIsShownAgainIsAbove();
    void ordinaryWindowOpensBelow();

    void withoutAConnectionNothingHappens();
    void elsewhereNothingHappens();

private:
    void keep();
    void endKeeping() { m_keeper.reset(); }
    xcb_window_t overlay() const { return idOf(*m_overlay); }

    NativeDesktop m_desktop;
    QScopedPointer<XServer> m_server;
    QScopedPointer<QWidget> m_overlay;
    QScopedPointer<OverlayKeeper> m_keeper;
};

void tst_OverlayKeeper::init()
{
    BehaviourTest::init();
    m_server.reset(new XServer);
    m_server->setFocus(XCB_INPUT_FOCUS_POINTER_ROOT);
    m_overlay.reset(new QWidget(nullptr, Qt::FramelessWindowHint | kUnmanaged));
    m_overlay->setGeometry(kOverlay);
    m_overlay->winId();
}

void tst_OverlayKeeper::cleanup()
{
    m_keeper.reset();
    m_overlay.reset();
    m_server.reset();
    BehaviourTest::cleanup();
}

void tst_OverlayKeeper::keep()
{
    m_keeper.reset(new OverlayKeeper(m_overlay->windowHandle(), m_desktop));
    m_overlay->show();
    QTRY_COMPARE(m_server->focus(), overlay());
}

void tst_OverlayKeeper::overlayGetsTheKeyboard()
{
    keep();
    QTRY_VERIFY(m_overlay->isActiveWindow());
    QVERIFY(m_server->isTopmost(overlay(), kShared));
}

void tst_OverlayKeeper::keyboardIsTakenBack_data()
{
    QTest::addColumn<quint32>("holder");
    QTest::newRow("from nobody") << quint32(XCB_INPUT_FOCUS_NONE);
    QTest::newRow("from what is under the pointer") << quint32(XCB_INPUT_FOCUS_POINTER_ROOT);
    // Stands for the window that the test makes.
    QTest::newRow("from another program's window") << ~quint32(0);
}

void tst_OverlayKeeper::keyboardIsTakenBack()
{
    QFETCH(quint32, holder);
    keep();
    const xcb_window_t other = m_server->showWindow(kOther, true);
    m_server->setFocus(holder == ~quint32(0) ? other : holder);
    QTRY_COMPARE(m_server->focus(), overlay());
}

// The first of these is answered at once, the next ones after a pause.
void tst_OverlayKeeper::keyboardIsTakenBackAgainAndAgain()
{
    keep();
    const xcb_window_t other = m_server->showWindow(kOther, true);
    for (int i = 0; i < 5; ++i) {
        m_server->setFocus(other);
        QTRY_COMPARE(m_server->focus(), overlay());
    }
}

void tst_OverlayKeeper::keyboardIsGivenBackAtTheEnd_data()
{
    QTest::addColumn<bool>("hadOne");
    QTest::newRow("to another program's window") << true;
    QTest::newRow("to what is under the pointer") << false;
}

void tst_OverlayKeeper::keyboardIsGivenBackAtTheEnd()
{
    QFETCH(bool, hadOne);
    const xcb_window_t holder =
        hadOne ? m_server->showWindow(kOther, true) : xcb_window_t(XCB_INPUT_FOCUS_POINTER_ROOT);
    m_server->setFocus(holder);
    keep();
    endKeeping();
    QCOMPARE(m_server->focus(), holder);
}

void tst_OverlayKeeper::formerHolderMayBeGone()
{
    const xcb_window_t holder = m_server->showWindow(kOther, true);
    m_server->setFocus(holder);
    keep();
    m_server->destroy(holder);
    endKeeping();
    QCOMPARE(m_server->focus(), overlay());
}

void tst_OverlayKeeper::overlayIsAboveAManagedWindow()
{
    keep();
    m_server->showWindow(kOther, true);
    QTRY_VERIFY(m_server->isTopmost(overlay(), kShared));
}

void tst_OverlayKeeper::overlayThatIsShownAgainIsAbove()
{
    m_overlay->show();
    m_overlay->hide();
    m_server->showWindow(kOther, true);
    keep();
    QTRY_VERIFY(m_server->isTopmost(overlay(), kShared));
}

void tst_OverlayKeeper::overlayIsAboveAManagedWindowThatIsRaised()
{
    const xcb_window_t other = m_server->showWindow(kOther, true);
    keep();
    QTRY_VERIFY(m_server->isTopmost(overlay(), kShared));
    m_server->restack(other, XCB_STACK_MODE_ABOVE);
    QTRY_VERIFY(m_server->isTopmost(overlay(), kShared));
}

// The keeper has seen it once it answers what comes later.
void tst_OverlayKeeper::overlayStaysWhereItIsWhenAWindowBelowIsLowered()
{
    m_server->showWindow(kOther, true);
    const xcb_window_t lowered = m_server->showWindow(kOther, true);
    keep();
    QTRY_VERIFY(m_server->isTopmost(overlay(), kShared));
    m_server->restack(lowered, XCB_STACK_MODE_BELOW);
    m_server->setFocus(lowered);
    QTRY_COMPARE(m_server->focus(), overlay());
    QVERIFY(m_server->isTopmost(overlay(), kShared));
}

// It opens before the keeper knows of the managed one.
void tst_OverlayKeeper::unmanagedWindowStaysAbove()
{
    keep();
    m_server->showWindow(kOther.translated(100, 0), true);
    const xcb_window_t unmanaged = m_server->showWindow(kOther, false);
    QTRY_VERIFY(m_server->isTopmost(overlay(), kShared + QPoint(100, 0)));
    QVERIFY(m_server->isTopmost(unmanaged, kShared));
}

void tst_OverlayKeeper::ownPopupStaysAbove_data()
{
    QTest::addColumn<Qt::WindowFlags>("type");
    QTest::newRow("list") << Qt::WindowFlags(Qt::Popup);
    QTest::newRow("tool tip") << Qt::WindowFlags(Qt::ToolTip);
}

void tst_OverlayKeeper::ownPopupStaysAbove()
{
    QFETCH(Qt::WindowFlags, type);
    keep();
    QWidget popup(m_overlay.data(), type);
    popup.setGeometry(kOther);
    popup.show();
    QVERIFY(QTest::qWaitForWindowExposed(&popup));
    const QRect covering = kOther.adjusted(0, 0, 100, 0);
    m_server->showWindow(covering, true);
    QTRY_VERIFY(m_server->isTopmost(overlay(), covering.bottomRight() - QPoint(5, 5)));
    QTRY_VERIFY(m_server->isTopmost(idOf(popup), kShared));
}

void tst_OverlayKeeper::dialogIsUnmanagedUntilHidden_data()
{
    QTest::addColumn<bool>("isDialog");
    QTest::newRow("dialog") << true;
    QTest::newRow("modal window") << false;
}

void tst_OverlayKeeper::dialogIsUnmanagedUntilHidden()
{
    QFETCH(bool, isDialog);
    keep();
    QWidget window(nullptr, isDialog ? Qt::Dialog : Qt::Window);
    if (!isDialog)
        window.setWindowModality(Qt::ApplicationModal);
    for (int times = 0; times < 2; ++times) {
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(isUnmanaged(window));
        window.hide();
        QVERIFY(!isUnmanaged(window));
    }
    endKeeping();
    window.show();
    QVERIFY(!isUnmanaged(window));
}

void tst_OverlayKeeper::dialogThatIsOpenAtTheEndIsManagedAgain()
{
    keep();
    QDialog dialog;
    dialog.open();
    QTRY_COMPARE(m_server->focus(), idOf(dialog));
    m_server->refuseWindows();
    QVERIFY(m_server->isViewable(idOf(dialog)));
    endKeeping();
    QVERIFY(!m_server->isViewable(idOf(dialog)));
    QVERIFY(!isUnmanaged(dialog));
    QVERIFY(dialog.isVisible());
}

void tst_OverlayKeeper::dialogThatIsNeverManagedStaysSo()
{
    keep();
    QWidget dialog(nullptr, Qt::Dialog | kUnmanaged);
    dialog.show();
    QTRY_COMPARE(m_server->focus(), idOf(dialog));
    QVERIFY(isUnmanaged(dialog));
    dialog.hide();
    QVERIFY(isUnmanaged(dialog));
    QTRY_COMPARE(m_server->focus(), overlay());
    dialog.show();
    m_server->refuseWindows();
    endKeeping();
    QVERIFY(isUnmanaged(dialog));
    QVERIFY(m_server->isViewable(idOf(dialog)));
}

void tst_OverlayKeeper::dialogThatWasOpenBeforeStaysBelow()
{
    QDialog dialog;
    dialog.setGeometry(kOther);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    keep();
    m_server->restack(idOf(dialog), XCB_STACK_MODE_ABOVE);
    QTRY_VERIFY(m_server->isTopmost(overlay(), kShared));
    m_server->setFocus(idOf(dialog));
    QTRY_COMPARE(m_server->focus(), overlay());
}

// The later one of two, until it is hidden.
void tst_OverlayKeeper::dialogHasTheKeyboard()
{
    keep();
    const xcb_window_t other = m_server->showWindow(kOther, true);
    QDialog dialogs[2];
    for (QDialog& dialog : dialogs) {
        dialog.setGeometry(kOther);
        dialog.show();
        QTRY_COMPARE(m_server->focus(), idOf(dialog));
        m_server->setFocus(other);
        QTRY_COMPARE(m_server->focus(), idOf(dialog));
    }
    dialogs[1].hide();
    QTRY_COMPARE(m_server->focus(), idOf(dialogs[0]));
    dialogs[0].hide();
    QTRY_COMPARE(m_server->focus(), overlay());
}

// However it came to the window, so that a process that is killed leaves it to what is under the
// pointer.
void tst_OverlayKeeper::keyboardRevertsToThePointer()
{
    keep();
    QDialog dialog;
    dialog.open();
    QTRY_VERIFY(dialog.isActiveWindow());
    QTRY_COMPARE(m_server->focusReverts(), std::uint8_t(XCB_INPUT_FOCUS_POINTER_ROOT));
    m_server->setFocus(overlay(), XCB_INPUT_FOCUS_PARENT);
    QTRY_COMPARE(m_server->focusReverts(), std::uint8_t(XCB_INPUT_FOCUS_POINTER_ROOT));
}

// Whoever waits for a reply of the server takes the events that come before it.
void tst_OverlayKeeper::overlayStaysAboveWhatAppearsAsItGetsTheKeyboard()
{
    keep();
    m_server->showWindow(kOther, true);
    QFocusEvent focusIn(QEvent::FocusIn);
    QApplication::sendEvent(m_overlay->windowHandle(), &focusIn);
    QTRY_VERIFY(m_server->isTopmost(overlay(), kShared));
}

void tst_OverlayKeeper::dialogIsAboveAManagedWindow()
{
    keep();
    QDialog dialog;
    dialog.setGeometry(kOther);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    m_server->showWindow(kOther, true);
    QTRY_VERIFY(m_server->isTopmost(idOf(dialog), kShared));
}

void tst_OverlayKeeper::dialogThatIsShownAgainIsAbove()
{
    QDialog dialog;
    dialog.setGeometry(kOther);
    dialog.show();
    dialog.hide();
    keep();
    dialog.show();
    QTRY_VERIFY(m_server->isTopmost(idOf(dialog), kShared));
}

void tst_OverlayKeeper::ordinaryWindowOpensBelow()
{
    keep();
    QWidget window;
    window.setGeometry(kOther);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(!isUnmanaged(window));
    QTRY_VERIFY(m_server->isTopmost(overlay(), kShared));
    QTRY_COMPARE(m_server->focus(), overlay());
}

void tst_OverlayKeeper::withoutAConnectionNothingHappens()
{
    const QByteArray display = qgetenv("DISPLAY");
    qputenv("DISPLAY", ":none");
    m_keeper.reset(new OverlayKeeper(m_overlay->windowHandle(), m_desktop));
    qputenv("DISPLAY", display);
    m_overlay->show();
    QDialog dialog;
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QVERIFY(!isUnmanaged(dialog));
    endKeeping();
}

// On a display, but by a platform that does not use it.
void tst_OverlayKeeper::elsewhereNothingHappens()
{
    const xcb_window_t holder = m_server->showWindow(kOther, true);
    m_server->setFocus(holder);
    QProcess elsewhere;
    elsewhere.start(QCoreApplication::applicationFilePath(), {"-platform", "offscreen"});
    QVERIFY(elsewhere.waitForFinished(kPatienceMs));
    QCOMPARE(elsewhere.exitCode(), 0);
    QCOMPARE(m_server->focus(), holder);
}

/// What elsewhereNothingHappens() runs: 0 if a dialog is as it would be without a keeper.
static int keepElsewhere()
{
    QWidget overlay;
    overlay.winId();
    const NativeDesktop desktop;
    const OverlayKeeper keeper(overlay.windowHandle(), desktop);
    overlay.show();
    QDialog dialog;
    dialog.show();
    QCoreApplication::processEvents();
    return isUnmanaged(dialog) ? 1 : 0;
}

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    if (QGuiApplication::platformName() != "xcb")
        return keepElsewhere();
    tst_OverlayKeeper test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_OverlayKeeper.moc"
