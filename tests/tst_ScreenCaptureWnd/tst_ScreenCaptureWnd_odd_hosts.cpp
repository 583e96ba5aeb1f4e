// SPDX-License-Identifier: MIT
#include "Access.h"
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "ScribbleArea.h"

#include <QEventLoop>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest/qtestspontaneevent.h>
#include <functional>

namespace
{

const QRect kRegion(QPoint(20, 20), QPoint(219, 169));
constexpr QPoint kOutside(400, 300);

QImage desktopPicture()
{
    QImage picture(800, 600, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixel(x, y, qRgb(x % 256, y % 256, (x + y) % 256));
    }
    return picture;
}

// Those that finish, then those that cancel.
enum Ending {
    Accept,
    DoneButton,
    DoubleClick,
    DoubleClickOnTheCanvas,
    Reject,
    Escape,
    Close,
    HideAndClose
};

enum Call { CallAccept, CallReject, CallUndo, CallRedo, CallReset, CallSave, CallHide, CallDelete };

} // namespace
Q_DECLARE_METATYPE(Ending)
Q_DECLARE_METATYPE(Call)

/// A receiver that does something of its own when the result arrives.
class OddReceiver : public Receiver
{
    Q_OBJECT

public:
    std::function<void()> then;

public slots:
    void onFinished(const QImage& picture, bool done)
    {
        onCaptured(picture, done);
        if (then)
            then();
    }
};

/// Hosts that do in the middle, at the end, or at the beginning of a capture what hosts should not.
class tst_ScreenCaptureWnd_odd_hosts : public BehaviourTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void quitsInItsSlot();
    void quitsInTheMiddle_data();
    void quitsInTheMiddle();
    void quitsWhileTheSaveDialogIsOpen();
    void keepsTheWindowAndShowsItAgain_data();
    void keepsTheWindowAndShowsItAgain();
    void keepsTheWindowThatSaved();
    void isRestoredByTheDesktopInItsSlot();
    void deletesItsReceiverInItsSlot_data();
    void deletesItsReceiverInItsSlot();
    void deletesTheWindowInItsSlot_data();
    void deletesTheWindowInItsSlot();
    void deletesTheWindowInTheMiddle();
    void runsAnEventLoopInItsSlot_data();
    void runsAnEventLoopInItsSlot();
    void showsTheEndedWindowAgain_data();
    void showsTheEndedWindowAgain();
    void asksForTheNextCaptureInItsSlot();
    void endsTheCaptureInItsSlotAgain();
    void callsWhileTheSaveDialogIsOpen_data();
    void callsWhileTheSaveDialogIsOpen();
    void callsSlotsBeforeThereIsARegion();
    void undoesInTheMiddleOfTheFirstShape();

private:
    void connectDirectly();
    void annotate();
    void end(Ending ending);
    /// Rows of all endings, queued and direct.
    void endings();
    /// Runs when the "Save As" dialog is open, with it.
    void whenSaving(const std::function<void(QFileDialog*)>& function);

    QScopedPointer<CaptureProbe> m_capture;
    QScopedPointer<OddReceiver> m_receiver;
    QImage m_selected;
};

void tst_ScreenCaptureWnd_odd_hosts::init()
{
    BehaviourTest::init();
    m_receiver.reset(new OddReceiver);
    m_capture.reset(new CaptureProbe);
    m_capture->window()->connectTo(m_receiver.data(), SLOT(onFinished(QImage, bool)));
    m_capture->window()->showFullDesktop(true);
    ScreenCaptureWndAccess::setDesktop(m_capture->window(), desktopPicture());
    m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
    m_selected = desktopPicture().copy(kRegion);
}

void tst_ScreenCaptureWnd_odd_hosts::cleanup()
{
    m_capture.reset();
    m_receiver.reset();
    BehaviourTest::cleanup();
}

void tst_ScreenCaptureWnd_odd_hosts::connectDirectly()
{
    m_capture->window()->connectTo(nullptr, nullptr);
    connect(m_capture->window(), SIGNAL(captureFinished(QImage, bool)), m_receiver.data(),
            SLOT(onFinished(QImage, bool)));
}

void tst_ScreenCaptureWnd_odd_hosts::annotate()
{
    m_capture->toolBar()->findChild<QPushButton*>()->click();
}

void tst_ScreenCaptureWnd_odd_hosts::end(Ending ending)
{
    ScreenCaptureWnd* window = m_capture->window();
    switch (ending) {
    case Accept:
        QTimer::singleShot(0, window, SLOT(accept()));
        break;
    case DoneButton:
        QTest::mouseClick(m_capture->toolBar()->findChildren<QPushButton*>().last(),
                          Qt::LeftButton);
        break;
    case DoubleClick:
        m_capture->doubleClick(kOutside);
        break;
    case DoubleClickOnTheCanvas:
        annotate();
        QTest::mouseDClick(window->findChild<ScribbleArea*>(), Qt::LeftButton);
        break;
    case Reject:
        QTimer::singleShot(0, window, SLOT(reject()));
        break;
    case Escape:
        QTest::keyClick(window, Qt::Key_Escape);
        break;
    case Close:
        window->close();
        break;
    case HideAndClose:
        window->hide();
        window->close();
        break;
    }
    QCoreApplication::processEvents();
}

void tst_ScreenCaptureWnd_odd_hosts::endings()
{
    QTest::addColumn<Ending>("ending");
    QTest::addColumn<bool>("direct");
    const struct {
        const char* name;
        Ending ending;
    } rows[] = {{"accept()", Accept},
                {"done button", DoneButton},
                {"double-click", DoubleClick},
                {"double-click on the canvas", DoubleClickOnTheCanvas},
                {"reject()", Reject},
                {"Escape", Escape},
                {"closed", Close},
                {"hidden, then closed", HideAndClose}};
    for (const auto& row : rows) {
        QTest::addRow("%s, queued", row.name) << row.ending << false;
        QTest::addRow("%s, connected directly", row.name) << row.ending << true;
    }
}

void tst_ScreenCaptureWnd_odd_hosts::whenSaving(const std::function<void(QFileDialog*)>& function)
{
    QTimer::singleShot(0, qApp, [function] {
        function(qobject_cast<QFileDialog*>(QApplication::activeModalWidget()));
    });
}

void tst_ScreenCaptureWnd_odd_hosts::quitsInItsSlot()
{
    m_receiver->then = [] { QCoreApplication::quit(); };
    QTimer::singleShot(0, m_capture->window(), SLOT(accept()));
    QCOMPARE(QApplication::exec(), 0);
    QVERIFY(m_capture->isGone());
    QCOMPARE(m_receiver->count, 1);
    QCOMPARE(m_receiver->image, m_selected);
}

void tst_ScreenCaptureWnd_odd_hosts::quitsInTheMiddle_data()
{
    QTest::addColumn<bool>("hidden");
    QTest::addColumn<bool>("kept");
    QTest::newRow("shown") << false << false;
    QTest::newRow("hidden") << true << false;
    QTest::newRow("kept") << false << true;
}

// Told before the window goes, and in time for a slot that is connected directly.
void tst_ScreenCaptureWnd_odd_hosts::quitsInTheMiddle()
{
    QFETCH(bool, hidden);
    QFETCH(bool, kept);
    bool told = false;
    m_receiver->then = [&] { told = !m_capture->isGone(); };
    connectDirectly();
    m_capture->window()->setAttribute(Qt::WA_DeleteOnClose, !kept);
    m_capture->window()->setVisible(!hidden);
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QCOMPARE(QApplication::exec(), 0);
    QVERIFY(told);
    QCOMPARE(m_capture->isGone(), !kept);
    QCOMPARE(m_receiver->count, 1);
    QVERIFY(!m_receiver->finished);
    QVERIFY(m_receiver->image.isNull());
}

void tst_ScreenCaptureWnd_odd_hosts::quitsWhileTheSaveDialogIsOpen()
{
    connectDirectly();
    whenSaving([](QFileDialog*) { QCoreApplication::quit(); });
    QTimer::singleShot(0, m_capture->window(), SLOT(save()));
    QCOMPARE(QApplication::exec(), 0);
    QVERIFY(m_capture->isGone());
    QCOMPARE(m_receiver->count, 1);
    QVERIFY(!m_receiver->finished);
}

void tst_ScreenCaptureWnd_odd_hosts::keepsTheWindowAndShowsItAgain_data()
{
    endings();
}

void tst_ScreenCaptureWnd_odd_hosts::keepsTheWindowAndShowsItAgain()
{
    QFETCH(Ending, ending);
    QFETCH(bool, direct);
    if (direct)
        connectDirectly();
    m_capture->window()->setAttribute(Qt::WA_DeleteOnClose, false);
    for (int capture = 1; capture <= 3; ++capture) {
        end(ending);
        deliver();
        QVERIFY(!m_capture->isGone());
        QVERIFY(!m_capture->window()->isVisible());
        QCOMPARE(m_receiver->count, capture);
        m_capture->window()->reset();
        m_capture->window()->show();
        m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
    }
    m_capture->window()->accept();
    deliver();
    QCOMPARE(m_receiver->image, m_selected);
}

void tst_ScreenCaptureWnd_odd_hosts::keepsTheWindowThatSaved()
{
    m_capture->window()->setAttribute(Qt::WA_DeleteOnClose, false);
    whenSaving([&](QFileDialog*) { m_capture->window()->reject(); });
    m_capture->window()->save();
    deliver();
    QVERIFY(!m_capture->isGone());
    QVERIFY(!m_capture->window()->testAttribute(Qt::WA_DeleteOnClose));
    QCOMPARE(m_receiver->count, 1);
}

// A window that is minimised and comes back is not shown for another capture.
void tst_ScreenCaptureWnd_odd_hosts::isRestoredByTheDesktopInItsSlot()
{
    connectDirectly();
    m_receiver->then = [&] {
        if (m_receiver->count > 1)
            return;
        QShowEvent restored;
        QSpontaneKeyEvent::setSpontaneous(&restored);
        qApp->notify(m_capture->window(), &restored);
        m_capture->window()->reject();
    };
    m_capture->window()->accept();
    QCOMPARE(m_receiver->count, 1);
}

void tst_ScreenCaptureWnd_odd_hosts::deletesItsReceiverInItsSlot_data()
{
    endings();
}

void tst_ScreenCaptureWnd_odd_hosts::deletesItsReceiverInItsSlot()
{
    QFETCH(Ending, ending);
    QFETCH(bool, direct);
    if (direct)
        connectDirectly();
    const QPointer<OddReceiver> receiver = m_receiver.take();
    int delivered = 0;
    receiver->then = [&] {
        ++delivered;
        delete receiver;
    };
    end(ending);
    deliver();
    QCOMPARE(delivered, 1);
    QVERIFY(receiver.isNull());
    QVERIFY(m_capture->isGone());
}

void tst_ScreenCaptureWnd_odd_hosts::deletesTheWindowInItsSlot_data()
{
    endings();
}

void tst_ScreenCaptureWnd_odd_hosts::deletesTheWindowInItsSlot()
{
    QFETCH(Ending, ending);
    QFETCH(bool, direct);
    m_receiver->then = [&] { delete m_capture->window(); };
    if (direct)
        connectDirectly();
    end(ending);
    deliver();
    QVERIFY(m_capture->isGone());
    QCOMPARE(m_receiver->count, 1);
    CaptureProbe next;
    QVERIFY(next.window());
}

void tst_ScreenCaptureWnd_odd_hosts::deletesTheWindowInTheMiddle()
{
    annotate();
    auto* canvas = m_capture->window()->findChild<ScribbleArea*>();
    QTest::mousePress(canvas, Qt::LeftButton, {}, QPoint(20, 20));
    delete m_capture->window();
    deliver();
    QVERIFY(m_capture->isGone());
    QCOMPARE(m_receiver->count, 0);
}

void tst_ScreenCaptureWnd_odd_hosts::runsAnEventLoopInItsSlot_data()
{
    endings();
}

void tst_ScreenCaptureWnd_odd_hosts::runsAnEventLoopInItsSlot()
{
    QFETCH(Ending, ending);
    QFETCH(bool, direct);
    if (direct)
        connectDirectly();
    int rounds = 0;
    m_receiver->then = [&] {
        QEventLoop loop;
        QTimer timer;
        connect(&timer, &QTimer::timeout, &loop, [&] {
            if (++rounds == 3)
                loop.quit();
        });
        timer.start(0);
        loop.exec();
    };
    end(ending);
    QTRY_VERIFY(m_capture->isGone());
    QCOMPARE(rounds, 3);
    QCOMPARE(m_receiver->count, 1);
    QCOMPARE(m_receiver->finished, ending <= DoubleClickOnTheCanvas);
    QCOMPARE(m_receiver->image, m_receiver->finished ? m_selected : QImage());
}

void tst_ScreenCaptureWnd_odd_hosts::showsTheEndedWindowAgain_data()
{
    endings();
}

// Who does not wait for the next capture gets the window that is on its way out.
void tst_ScreenCaptureWnd_odd_hosts::showsTheEndedWindowAgain()
{
    QFETCH(Ending, ending);
    QFETCH(bool, direct);
    if (direct)
        connectDirectly();
    OddReceiver second;
    bool sameInTheSlot = false;
    m_receiver->then = [&] {
        ScreenCaptureWnd* const window = ScreenCaptureWnd::screenCaptureWnd();
        sameInTheSlot = window == m_capture->window();
        window->connectTo(&second, SLOT(onFinished(QImage, bool)));
        window->showFullDesktop(true);
    };
    end(ending);
    deliver();
    QVERIFY(sameInTheSlot);
    QVERIFY(m_capture->isGone());
    QCOMPARE(m_receiver->count, 1);
    QCOMPARE(second.count, 0);

    CaptureProbe next;
    next.window()->connectTo(&second, SLOT(onFinished(QImage, bool)));
    next.window()->showFullDesktop(true);
    ScreenCaptureWndAccess::setDesktop(next.window(), desktopPicture());
    next.drag(kRegion.topLeft(), kRegion.bottomRight());
    next.window()->accept();
    deliver();
    QVERIFY(next.isGone());
    QCOMPARE(second.count, 1);
    QCOMPARE(second.image, m_selected);
}

void tst_ScreenCaptureWnd_odd_hosts::asksForTheNextCaptureInItsSlot()
{
    const QPointer<ScreenCaptureWnd> ended = m_capture->window();
    // A loop as a host has it: the one of the tests deletes windows out of turn.
    QEventLoop loop;
    bool sameInTheSlot = false;
    QPointer<ScreenCaptureWnd> next;
    m_receiver->then = [&] {
        sameInTheSlot = ScreenCaptureWnd::screenCaptureWnd() == ended;
        QTimer::singleShot(0, qApp, [&] {
            next = ScreenCaptureWnd::screenCaptureWnd();
            loop.quit();
        });
    };
    QTimer::singleShot(0, ended.data(), SLOT(accept()));
    loop.exec();
    QVERIFY(next);
    QVERIFY(sameInTheSlot);
    QVERIFY(ended.isNull());
    QCOMPARE(m_receiver->count, 1);
    delete next;
}

void tst_ScreenCaptureWnd_odd_hosts::endsTheCaptureInItsSlotAgain()
{
    connect(m_capture->window(), SIGNAL(captureFinished(QImage, bool)), m_capture->window(),
            SLOT(reject()));
    m_receiver->then = [&] {
        m_capture->window()->accept();
        m_capture->window()->reject();
        m_capture->window()->save();
        m_capture->window()->undo();
        QVERIFY(!QApplication::activeModalWidget());
    };
    m_capture->window()->accept();
    QTRY_VERIFY(m_capture->isGone());
    QCOMPARE(m_receiver->count, 1);
    QVERIFY(m_receiver->finished);
    QCOMPARE(m_receiver->image, m_selected);
}

void tst_ScreenCaptureWnd_odd_hosts::callsWhileTheSaveDialogIsOpen_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<int>("results");
    QTest::addColumn<bool>("saved");
    QTest::newRow("accept()") << CallAccept << 1 << false;
    QTest::newRow("reject()") << CallReject << 1 << false;
    QTest::newRow("undo()") << CallUndo << 0 << false;
    QTest::newRow("redo()") << CallRedo << 0 << true;
    QTest::newRow("reset()") << CallReset << 0 << false;
    QTest::newRow("save()") << CallSave << 0 << true;
    QTest::newRow("hide()") << CallHide << 0 << true;
    QTest::newRow("deletes the window") << CallDelete << 0 << false;
}

void tst_ScreenCaptureWnd_odd_hosts::callsWhileTheSaveDialogIsOpen()
{
    QFETCH(Call, call);
    QFETCH(int, results);
    QFETCH(bool, saved);
    const QTemporaryDir directory;
    const QString name = directory.filePath("picture.png");
    const auto call_ = [&](ScreenCaptureWnd* window) {
        switch (call) {
        case CallAccept:
            return window->accept();
        case CallReject:
            return window->reject();
        case CallUndo:
            return window->undo();
        case CallRedo:
            return window->redo();
        case CallReset:
            return window->reset();
        case CallSave:
            return window->save();
        case CallHide:
            return window->hide();
        case CallDelete:
            delete window;
        }
    };
    whenSaving([&](QFileDialog* opened) {
        const QPointer<QFileDialog> dialog(opened);
        call_(m_capture->window());
        QVERIFY(dialog);
        dialog->findChild<QLineEdit*>()->setText(name);
        if (dialog->isVisible())
            static_cast<QDialog*>(dialog)->accept();
    });
    m_capture->window()->save();
    deliver();
    QCOMPARE(m_receiver->count, results);
    QCOMPARE(QImage(name).convertToFormat(QImage::Format_RGB32) == m_selected, saved);
    QCOMPARE(m_capture->isGone(), call == CallAccept || call == CallReject || call == CallDelete);
    if (call == CallAccept)
        QCOMPARE(m_receiver->image, m_selected);
}

void tst_ScreenCaptureWnd_odd_hosts::callsSlotsBeforeThereIsARegion()
{
    ScreenCaptureWnd* window = m_capture->window();
    window->reset();
    window->undo();
    window->redo();
    window->onCaptureRectChanged(QRect(1, 2, 3, 4));
    window->onPaintTypeChanged();
    window->onMosaicBlurChanged(7);
#ifdef QT_NO_DEBUG
    // What asserts that there is a canvas does nothing where assertions are off.
    window->onFontSizeChanged("12");
    window->onPenWidthChanged(7);
#endif
    const QTemporaryDir directory;
    const QString name = directory.filePath("picture.png");
    whenSaving([&](QFileDialog* dialog) {
        dialog->findChild<QLineEdit*>()->setText(name);
        static_cast<QDialog*>(dialog)->accept();
    });
    window->save();
    QVERIFY(!QFile::exists(name));
    m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
    window->onBtnSend();
    deliver();
    QCOMPARE(m_receiver->count, 1);
    QCOMPARE(m_receiver->image, m_selected);
}

// As the shortcut does while the button is held. The shape goes with its region.
void tst_ScreenCaptureWnd_odd_hosts::undoesInTheMiddleOfTheFirstShape()
{
    ScreenCaptureWnd* window = m_capture->window();
    const auto chooseRectangle = [&] {
        m_capture->toolBar()->findChildren<QPushButton*>().at(3)->click();
        return window->findChild<ScribbleArea*>();
    };
    ScribbleArea* canvas = chooseRectangle();
    QTest::mousePress(canvas, Qt::LeftButton, {}, QPoint(30, 30));
    QMouseEvent move(QEvent::MouseMove, QPoint(90, 80), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(canvas, &move);
    window->undo();
    m_capture->drag(kRegion.topLeft(), kRegion.bottomRight());
    chooseRectangle();
    const QImage picture = window->scribbledImage();
    // What a shape without a frame leaves in the corner is there also without the undo.
    const QRect shape(QPoint(20, 20), QPoint(100, 90));
    QCOMPARE(picture.copy(shape), m_selected.copy(shape));
}

QTEST_MAIN(tst_ScreenCaptureWnd_odd_hosts)
#include "tst_ScreenCaptureWnd_odd_hosts.moc"
