// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "Grabs.h"
#include "MainWindow.h"

#include <QStatusBar>
#include <QToolBar>

/// The program's window tells how its captures end.
class tst_MainWindow : public BehaviourTest
{
    Q_OBJECT

private slots:
    void init();
    void statusBarTellsWhyThereIsNoPicture();
    void statusBarTellsTheSizeOfThePicture();

private:
    /// Takes a capture, which `end` ends, and waits until the program's window is back.
    template <typename End>
    void capture(End end)
    {
        m_window->findChild<QToolBar*>()->findChild<QPushButton*>()->click();
        QVERIFY(!m_window->isVisible());
        QTRY_VERIFY(ScreenCaptureWndAccess::instance() &&
                    ScreenCaptureWndAccess::instance()->isVisible());
        end(*ScreenCaptureWnd::screenCaptureWnd());
        QTRY_VERIFY(m_window->isVisible());
        QTRY_VERIFY(!ScreenCaptureWndAccess::instance());
    }
    static void cancel(ScreenCaptureWnd& capture) { capture.reject(); }
    static void finish(ScreenCaptureWnd& capture)
    {
        Mouse(&capture).drag(QRect(100, 100, 64, 48));
        capture.accept();
    }
    QString told() const { return m_window->statusBar()->currentMessage(); }

    std::unique_ptr<MainWindow> m_window;
};

void tst_MainWindow::init()
{
    BehaviourTest::init();
    s_grabsFail = false;
    m_window.reset(new MainWindow(0));
    m_window->show();
}

void tst_MainWindow::statusBarTellsWhyThereIsNoPicture()
{
    const QString reason = "The screens cannot be grabbed.";
    for (const auto end : {&cancel, &finish}) {
        s_grabsFail = true;
        capture(end);
        QCOMPARE(told(), reason);
        s_grabsFail = false;
        capture(&cancel);
        QCOMPARE(told(), QString());
    }
}

void tst_MainWindow::statusBarTellsTheSizeOfThePicture()
{
    capture(&finish);
    QCOMPARE(told(), QString("64 x 48 pixels"));
    s_grabsFail = true;
    capture(&finish);
    QCOMPARE(told(), QString("The screens cannot be grabbed."));
    s_grabsFail = false;
    // The picture is still there.
    capture(&cancel);
    QCOMPARE(told(), QString("64 x 48 pixels"));
}

QTEST_MAIN(tst_MainWindow)
#include "tst_MainWindow.moc"
