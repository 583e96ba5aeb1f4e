// SPDX-License-Identifier: MIT
#include "CaptureProbe.h"
#include "Pictures.h"

#include <QEventLoop>
#include <QScreen>
#include <QTemporaryDir>
#include <QtTest/qtestspontaneevent.h>

namespace
{

const QRect kRegion(QPoint(20, 20), QPoint(219, 169));
constexpr QPoint kOutside(400, 300);
const QImage kDesktop = places(QSize(800, 800));

// What Qt says when a display changes, which the offscreen platform cannot.
void addScreen()
{
    emit qApp->screenAdded(QGuiApplication::primaryScreen());
}

void removeScreen()
{
    emit qApp->screenRemoved(QGuiApplication::primaryScreen());
}

void resizeScreen()
{
    QScreen* const screen = QGuiApplication::primaryScreen();
    emit screen->geometryChanged(screen->geometry());
}

/// A way in which a capture with a region ends.
struct Ending {
    const char* name;
    bool finished;
    void (*end)(const CaptureProbe& capture);
};

const Ending kEndings[] = {
    {"accept()", true, [](const CaptureProbe& c) { c.window()->accept(); }},
    {"onBtnSend()", true, [](const CaptureProbe& c) { c.window()->onBtnSend(); }},
    {"done button", true,
     [](const CaptureProbe& c) { QTest::mouseClick(c.at(Done), Qt::LeftButton); }},
    {"double-click", true, [](const CaptureProbe& c) { c.doubleClick(kOutside); }},
    {"double-click on the canvas", true,
     [](const CaptureProbe& c) {
         c.choose(Rectangle);
         QTest::mouseDClick(c.canvas(), Qt::LeftButton);
     }},
    {"reject()", false, [](const CaptureProbe& c) { c.window()->reject(); }},
    {"close button", false,
     [](const CaptureProbe& c) { QTest::mouseClick(c.at(Close), Qt::LeftButton); }},
    {"Escape", false, [](const CaptureProbe& c) { QTest::keyClick(c.window(), Qt::Key_Escape); }},
    {"right click while idle", false,
     [](const CaptureProbe& c) {
         c.window()->reset();
         c.click(kOutside, Qt::RightButton);
     }},
    {"closed", false, [](const CaptureProbe& c) { c.window()->close(); }},
    {"screen added", false, [](const CaptureProbe&) { addScreen(); }},
    {"screen removed", false, [](const CaptureProbe&) { removeScreen(); }},
    {"screen resized", false, [](const CaptureProbe&) { resizeScreen(); }},
    {"hidden, then closed", false,
     [](const CaptureProbe& c) {
         c.window()->hide();
         c.window()->close();
     }},
};

} // namespace

/// How a capture ends, also for hosts that do in the middle or at the end of it what hosts should
/// not.
class tst_ScreenCaptureWnd_ending : public CaptureTest
{
    Q_OBJECT

private slots:
    void init();
    void endsOnce_data() { endings(); }
    void endsOnce();
    void endsWithoutARegion_data();
    void endsWithoutARegion();
    void endsBeforeItWasShown_data();
    void endsBeforeItWasShown();
    void screensChangeWhileItIsHidden();
    void otherButtonsDoNotFinishByDoubleClick();
    void doubleClickReachesTheCanvas();

    void quitsInItsSlot();
    void quitsInTheMiddle_data();
    void quitsInTheMiddle();
    void keepsTheWindowAndShowsItAgain_data() { endings(); }
    void keepsTheWindowAndShowsItAgain();
    void isRestoredByTheDesktopInItsSlot();
    void deletesItsReceiverInItsSlot_data() { endings(); }
    void deletesItsReceiverInItsSlot();
    void deletesTheWindowInItsSlot_data() { endings(); }
    void deletesTheWindowInItsSlot();
    void deletesTheWindowInTheMiddle();
    void runsAnEventLoopInItsSlot_data() { endings(); }
    void runsAnEventLoopInItsSlot();
    void showsTheEndedWindowAgain_data() { endings(); }
    void showsTheEndedWindowAgain();
    void asksForTheNextCaptureInItsSlot();
    void endsTheCaptureInItsSlotAgain();

    void callsWhileTheSaveDialogIsOpen_data();
    void callsWhileTheSaveDialogIsOpen();
    void keepsTheWindowThatSaved();
    void callsSlotsBeforeThereIsARegion();

private:
    /// Rows of all endings, with receivers that are connected queued and directly.
    static void endings();
    /// The ending of the row; connects directly where the row says so.
    const Ending& prepareEnding();
    void connectDirectly();

    const QImage m_selected = kDesktop.copy(kRegion);
};

void tst_ScreenCaptureWnd_ending::init()
{
    CaptureTest::init();
    ScreenCaptureWndAccess::setDesktop(window(), kDesktop);
    m_capture->drag(kRegion);
}

void tst_ScreenCaptureWnd_ending::endings()
{
    QTest::addColumn<int>("ending");
    QTest::addColumn<bool>("direct");
    for (const bool direct : {false, true}) {
        int index = 0;
        for (const Ending& ending : kEndings)
            QTest::addRow("%s, %s", ending.name, direct ? "connected directly" : "queued")
                << index++ << direct;
    }
}

const Ending& tst_ScreenCaptureWnd_ending::prepareEnding()
{
    QFETCH(int, ending);
    QFETCH(bool, direct);
    if (direct)
        connectDirectly();
    return kEndings[ending];
}

void tst_ScreenCaptureWnd_ending::connectDirectly()
{
    window()->connectTo(nullptr, nullptr);
    connect(window(), SIGNAL(captureFinished(QImage, bool)), m_receiver.get(),
            SLOT(onCaptured(QImage, bool)));
}

void tst_ScreenCaptureWnd_ending::endsOnce()
{
    QFETCH(bool, direct);
    const Ending& ending = prepareEnding();
    bool wasVisible = false;
    m_receiver->then = [&] { wasVisible = !m_capture->isGone() && window()->isVisible(); };
    ending.end(*m_capture);
    QVERIFY(!window()->isVisible());
    QCOMPARE(window()->result(), int(ending.finished ? QDialog::Accepted : QDialog::Rejected));
    QCOMPARE(m_receiver->count, direct ? 1 : 0);
    // What is on its way out delivers nothing more and asks for no file.
    window()->reject();
    window()->accept();
    m_capture->click(kOutside, Qt::RightButton);
    window()->save();
    deliver();
    QVERIFY(m_capture->isGone());
    QCOMPARE(m_receiver->count, 1);
    QCOMPARE(m_receiver->finished, ending.finished);
    QCOMPARE(m_receiver->image, ending.finished ? m_selected : QImage());
    QCOMPARE(wasVisible, direct && QByteArray(ending.name) != "hidden, then closed");
}

void tst_ScreenCaptureWnd_ending::endsWithoutARegion_data()
{
    QTest::addColumn<bool>("tooShort");
    QTest::newRow("none") << false;
    QTest::newRow("one that is too short to be seen") << true;
}

void tst_ScreenCaptureWnd_ending::endsWithoutARegion()
{
    QFETCH(bool, tooShort);
    window()->reset();
    if (tooShort)
        m_capture->drag(kOutside, kOutside + QPoint(1, 1));
    m_capture->doubleClick(kOutside);
    deliver();
    QCOMPARE(m_receiver->count, 1);
    QVERIFY(m_receiver->finished);
    QVERIFY(m_receiver->image.isNull());
}

void tst_ScreenCaptureWnd_ending::endsBeforeItWasShown_data()
{
    QTest::addColumn<bool>("finished");
    QTest::newRow("accept()") << true;
    QTest::newRow("reject()") << false;
}

void tst_ScreenCaptureWnd_ending::endsBeforeItWasShown()
{
    QFETCH(bool, finished);
    m_capture.reset();
    m_capture.reset(new CaptureProbe);
    window()->connectTo(m_receiver.get(), SLOT(onCaptured(QImage, bool)));
    if (finished)
        window()->accept();
    else
        window()->reject();
    deliver();
    QVERIFY(m_capture->isGone());
    QCOMPARE(m_receiver->count, 1);
    QCOMPARE(m_receiver->finished, finished);
}

void tst_ScreenCaptureWnd_ending::screensChangeWhileItIsHidden()
{
    window()->hide();
    addScreen();
    removeScreen();
    resizeScreen();
    deliver();
    QCOMPARE(m_receiver->count, 0);
    QVERIFY(!m_capture->isGone());
    window()->showFullDesktop(true);
    QCOMPARE(window()->captureImage(), m_selected);
}

void tst_ScreenCaptureWnd_ending::otherButtonsDoNotFinishByDoubleClick()
{
    m_capture->doubleClick(kOutside, Qt::RightButton);
    m_capture->doubleClick(kOutside, Qt::MiddleButton);
    QVERIFY(window()->isVisible());
}

// Intended: although it has finished the capture.
void tst_ScreenCaptureWnd_ending::doubleClickReachesTheCanvas()
{
    m_capture->choose(Scribble);
    const ScribbleArea& canvas = *m_capture->canvas();
    Mouse(m_capture->canvas()).doubleClick(QPoint(20, 20));
    QVERIFY(!window()->isVisible());
    QVERIFY(ScribbleAreaAccess::scribbling(canvas));
}

void tst_ScreenCaptureWnd_ending::quitsInItsSlot()
{
    m_receiver->then = [] { QCoreApplication::quit(); };
    QTimer::singleShot(0, window(), SLOT(accept()));
    QCOMPARE(QApplication::exec(), 0);
    QVERIFY(m_capture->isGone());
    QCOMPARE(m_receiver->count, 1);
    QCOMPARE(m_receiver->image, m_selected);
}

void tst_ScreenCaptureWnd_ending::quitsInTheMiddle_data()
{
    QTest::addColumn<bool>("hidden");
    QTest::addColumn<bool>("kept");
    QTest::addColumn<bool>("saving");
    QTest::newRow("shown") << false << false << false;
    QTest::newRow("hidden") << true << false << false;
    QTest::newRow("kept") << false << true << false;
    QTest::newRow("saving") << false << false << true;
}

// Told before the window goes, and in time for a slot that is connected directly.
void tst_ScreenCaptureWnd_ending::quitsInTheMiddle()
{
    QFETCH(bool, hidden);
    QFETCH(bool, kept);
    QFETCH(bool, saving);
    bool told = false;
    m_receiver->then = [&] { told = !m_capture->isGone(); };
    connectDirectly();
    window()->setAttribute(Qt::WA_DeleteOnClose, !kept);
    window()->setVisible(!hidden);
    if (saving) {
        QTimer::singleShot(0, window(), SLOT(save()));
        QTimer::singleShot(0, [] { whileSaving([](QFileDialog&) { QCoreApplication::quit(); }); });
    } else {
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    }
    QCOMPARE(QApplication::exec(), 0);
    QVERIFY(told);
    QCOMPARE(m_capture->isGone(), !kept);
    QCOMPARE(m_receiver->count, 1);
    QVERIFY(!m_receiver->finished);
    QVERIFY(m_receiver->image.isNull());
}

void tst_ScreenCaptureWnd_ending::keepsTheWindowAndShowsItAgain()
{
    const Ending& ending = prepareEnding();
    window()->setAttribute(Qt::WA_DeleteOnClose, false);
    for (int capture = 1; capture <= 3; ++capture) {
        ending.end(*m_capture);
        deliver();
        QVERIFY(!m_capture->isGone());
        QVERIFY(!window()->isVisible());
        QCOMPARE(m_receiver->count, capture);
        window()->reset();
        window()->show();
        m_capture->drag(kRegion);
    }
    window()->accept();
    deliver();
    QCOMPARE(m_receiver->image, m_selected);
}

// A window that is minimised and comes back is not shown for another capture.
void tst_ScreenCaptureWnd_ending::isRestoredByTheDesktopInItsSlot()
{
    connectDirectly();
    m_receiver->then = [&] {
        if (m_receiver->count > 1)
            return;
        QShowEvent restored;
        QSpontaneKeyEvent::setSpontaneous(&restored);
        qApp->notify(window(), &restored);
        window()->reject();
    };
    window()->accept();
    QCOMPARE(m_receiver->count, 1);
}

void tst_ScreenCaptureWnd_ending::deletesItsReceiverInItsSlot()
{
    const Ending& ending = prepareEnding();
    const QPointer<Receiver> receiver = m_receiver.release();
    int delivered = 0;
    receiver->then = [&] {
        ++delivered;
        delete receiver;
    };
    ending.end(*m_capture);
    deliver();
    QCOMPARE(delivered, 1);
    QVERIFY(receiver.isNull());
    QVERIFY(m_capture->isGone());
}

void tst_ScreenCaptureWnd_ending::deletesTheWindowInItsSlot()
{
    const Ending& ending = prepareEnding();
    m_receiver->then = [&] { delete window(); };
    ending.end(*m_capture);
    deliver();
    QVERIFY(m_capture->isGone());
    QCOMPARE(m_receiver->count, 1);
    restart();
    QVERIFY(window()->isVisible());
}

void tst_ScreenCaptureWnd_ending::deletesTheWindowInTheMiddle()
{
    m_capture->choose(Scribble);
    Mouse(m_capture->canvas()).press(QPoint(20, 20));
    delete window();
    deliver();
    QVERIFY(m_capture->isGone());
    QCOMPARE(m_receiver->count, 0);
}

void tst_ScreenCaptureWnd_ending::runsAnEventLoopInItsSlot()
{
    const Ending& ending = prepareEnding();
    int rounds = 0;
    m_receiver->then = [&rounds] {
        QEventLoop loop;
        QTimer timer;
        connect(&timer, &QTimer::timeout, &loop, [&] {
            if (++rounds == 3)
                loop.quit();
        });
        timer.start(0);
        loop.exec();
    };
    ending.end(*m_capture);
    QTRY_VERIFY(m_capture->isGone());
    QCOMPARE(rounds, 3);
    QCOMPARE(m_receiver->count, 1);
    QCOMPARE(m_receiver->image, ending.finished ? m_selected : QImage());
}

// Who does not wait for the next capture gets the window that is on its way out.
void tst_ScreenCaptureWnd_ending::showsTheEndedWindowAgain()
{
    const Ending& ending = prepareEnding();
    Receiver second;
    bool sameInTheSlot = false;
    m_receiver->then = [&] {
        sameInTheSlot = ScreenCaptureWnd::screenCaptureWnd() == window();
        m_capture->start(second);
    };
    ending.end(*m_capture);
    deliver();
    QVERIFY(sameInTheSlot);
    QVERIFY(m_capture->isGone());
    QCOMPARE(m_receiver->count, 1);
    QCOMPARE(second.count, 0);

    restart();
    m_receiver->then = nullptr;
    ScreenCaptureWndAccess::setDesktop(window(), kDesktop);
    m_capture->drag(kRegion);
    window()->accept();
    deliver();
    QCOMPARE(m_receiver->count, 2);
    QCOMPARE(m_receiver->image, m_selected);
}

void tst_ScreenCaptureWnd_ending::asksForTheNextCaptureInItsSlot()
{
    const QPointer<ScreenCaptureWnd> ended = window();
    // A loop as a host has it: the one of the tests deletes windows out of turn.
    QEventLoop loop;
    bool sameInTheSlot = false;
    m_receiver->then = [&] {
        sameInTheSlot = ScreenCaptureWnd::screenCaptureWnd() == ended;
        QTimer::singleShot(0, qApp, [&] {
            m_capture.reset(new CaptureProbe);
            loop.quit();
        });
    };
    QTimer::singleShot(0, window(), SLOT(accept()));
    loop.exec();
    QVERIFY(sameInTheSlot);
    QVERIFY(ended.isNull());
    QVERIFY(window());
    QCOMPARE(m_receiver->count, 1);
}

void tst_ScreenCaptureWnd_ending::endsTheCaptureInItsSlotAgain()
{
    connect(window(), SIGNAL(captureFinished(QImage, bool)), window(), SLOT(reject()));
    m_receiver->then = [&] {
        window()->accept();
        window()->reject();
        window()->save();
        window()->undo();
        QVERIFY(!QApplication::activeModalWidget());
    };
    window()->accept();
    QTRY_VERIFY(m_capture->isGone());
    QCOMPARE(m_receiver->count, 1);
    QVERIFY(m_receiver->finished);
    QCOMPARE(m_receiver->image, m_selected);
}

using Call = void (*)(ScreenCaptureWnd* window);
Q_DECLARE_METATYPE(Call)

void tst_ScreenCaptureWnd_ending::callsWhileTheSaveDialogIsOpen_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<int>("results");
    QTest::addColumn<bool>("saved");
    QTest::addColumn<bool>("gone");
    const auto row = [](const char* name, Call call, int results, bool saved, bool gone) {
        QTest::newRow(name) << call << results << saved << gone;
    };
    using Window = ScreenCaptureWnd;
    row(
        "accept()", [](Window* w) { w->accept(); }, 1, false, true);
    row(
        "reject()", [](Window* w) { w->reject(); }, 1, false, true);
    row(
        "undo()", [](Window* w) { w->undo(); }, 0, false, false);
    row(
        "redo()", [](Window* w) { w->redo(); }, 0, true, false);
    row(
        "reset()", [](Window* w) { w->reset(); }, 0, false, false);
    row(
        "save()", [](Window* w) { w->save(); }, 0, true, false);
    row(
        "hide()", [](Window* w) { w->hide(); }, 0, true, false);
    row(
        "deletes the window", [](Window* w) { delete w; }, 0, false, true);
}

void tst_ScreenCaptureWnd_ending::callsWhileTheSaveDialogIsOpen()
{
    QFETCH(Call, call);
    QFETCH(int, results);
    QFETCH(bool, saved);
    QFETCH(bool, gone);
    const QTemporaryDir directory;
    const QString name = directory.filePath("picture.png");
    whileSaving([&](QFileDialog& opened) {
        const QPointer<QFileDialog> dialog(&opened);
        call(window());
        QVERIFY(dialog);
        if (dialog->isVisible())
            answer(*dialog, name);
    });
    window()->save();
    deliver();
    QCOMPARE(m_receiver->count, results);
    QCOMPARE(QImage(name).convertToFormat(QImage::Format_RGB32) == m_selected, saved);
    QCOMPARE(m_capture->isGone(), gone);
    QCOMPARE(m_receiver->image, m_receiver->finished ? m_selected : QImage());
}

void tst_ScreenCaptureWnd_ending::keepsTheWindowThatSaved()
{
    window()->setAttribute(Qt::WA_DeleteOnClose, false);
    whileSaving([&](QFileDialog&) { window()->reject(); });
    window()->save();
    deliver();
    QVERIFY(!m_capture->isGone());
    QVERIFY(!window()->testAttribute(Qt::WA_DeleteOnClose));
    QCOMPARE(m_receiver->count, 1);
}

void tst_ScreenCaptureWnd_ending::callsSlotsBeforeThereIsARegion()
{
    window()->reset();
    window()->undo();
    window()->redo();
    window()->onCaptureRectChanged(QRect(1, 2, 3, 4));
    window()->onPaintTypeChanged();
    window()->onMosaicBlurChanged(7);
#ifdef QT_NO_DEBUG
    // What asserts that there is a canvas does nothing where assertions are off.
    window()->onFontSizeChanged("12");
    window()->onPenWidthChanged(7);
#endif
    const QTemporaryDir directory;
    m_capture->saveAs(directory.filePath("picture.png"));
    QVERIFY(!QFile::exists(directory.filePath("picture.png")));
    m_capture->drag(kRegion);
    window()->accept();
    deliver();
    QCOMPARE(m_receiver->count, 1);
    QCOMPARE(m_receiver->image, m_selected);
}

QTEST_MAIN(tst_ScreenCaptureWnd_ending)
#include "tst_ScreenCaptureWnd_ending.moc"
