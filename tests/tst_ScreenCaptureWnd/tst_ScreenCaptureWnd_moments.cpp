// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "ToolBarsProbe.h"

#include <QFileDialog>
#include <QTimer>

/// What is asked of the window at a moment when it is not ready for it.
class tst_ScreenCaptureWnd_moments : public BehaviourTest
{
    Q_OBJECT

private slots:
    void aToolThatIsHeldWhileTheBarGoesAwayIsNotChosen();
    void savingACaptureThatHasEndedAsksForNoFile();
};

void tst_ScreenCaptureWnd_moments::aToolThatIsHeldWhileTheBarGoesAwayIsNotChosen()
{
    ToolBarsProbe capture;
    capture.window()->showFullDesktop(true);
    capture.drag(QPoint(100, 100), QPoint(400, 300));
    auto* pen = qobject_cast<QAbstractButton*>(capture.at(Scribble));
    QTest::mousePress(pen, Qt::LeftButton);
    QVERIFY(pen->isDown());
    capture.window()->reset();
    QTest::mouseRelease(pen, Qt::LeftButton);
    QVERIFY(!pen->isChecked());

    capture.drag(QPoint(100, 100), QPoint(400, 300));
    QVERIFY(capture.subBar()->isHidden());
    QTest::mouseClick(pen, Qt::LeftButton);
    QVERIFY(pen->isChecked());
    QVERIFY(!capture.subBar()->isHidden());
}

void tst_ScreenCaptureWnd_moments::savingACaptureThatHasEndedAsksForNoFile()
{
    CaptureProbe capture;
    Receiver receiver;
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    capture.window()->showFullDesktop(true);
    capture.drag(QPoint(100, 100), QPoint(400, 300));
    capture.window()->accept();
    bool asked = false;
    QTimer::singleShot(0, &receiver, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        asked = dialog != nullptr;
        if (dialog)
            dialog->reject();
    });
    capture.window()->save();
    QTest::qWait(0);
    QVERIFY(!asked);
    deliver();
    QCOMPARE(receiver.count, 1);
    QVERIFY(capture.isGone());
}

QTEST_MAIN(tst_ScreenCaptureWnd_moments)
#include "tst_ScreenCaptureWnd_moments.moc"
