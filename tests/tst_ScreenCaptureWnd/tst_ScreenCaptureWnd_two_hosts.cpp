// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "Screen.h"

#include <QProcess>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <cstdio>
#include <unistd.h>

namespace
{

const QRect kRegion(QPoint(100, 80), QPoint(399, 279));
const char* const kOtherHost = "--other-host";

/// A host of its own, told through its standard input when to finish: 0 when its capture delivered
/// the picture that it saved in `file` beforehand.
int runOtherHost(const QString& file)
{
    CaptureProbe capture;
    Receiver receiver;
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    capture.window()->showFullDesktop(true);
    if (!QTest::qWaitForWindowExposed(capture.window()))
        return 2;
    capture.drag(kRegion.topLeft(), kRegion.bottomRight());
    const QImage selected = capture.window()->captureImage();
    if (!selected.save(file))
        return 3;
    std::puts("selected");
    std::fflush(stdout);

    QSocketNotifier told(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&told, &QSocketNotifier::activated, capture.window(), [&] {
        told.setEnabled(false);
        capture.window()->accept();
    });
    if (!QTest::qWaitFor([&] { return capture.isGone() && receiver.count > 0; }, 60000))
        return 4;
    return receiver.count == 1 && receiver.image == selected ? 0 : 1;
}

} // namespace

/// Two applications that take a capture at the same time.
class tst_ScreenCaptureWnd_two_hosts : public BehaviourTest
{
    Q_OBJECT

private slots:
    void eachGetsItsOwnPicture_data();
    void eachGetsItsOwnPicture();
};

void tst_ScreenCaptureWnd_two_hosts::eachGetsItsOwnPicture_data()
{
    QTest::addColumn<bool>("otherFirst");
    QTest::newRow("the later one ends first") << true;
    QTest::newRow("the earlier one ends first") << false;
}

void tst_ScreenCaptureWnd_two_hosts::eachGetsItsOwnPicture()
{
    QFETCH(bool, otherFirst);
    Desktop desktop(17);
    QVERIFY(QTest::qWaitForWindowExposed(&desktop));
    QTRY_COMPARE(screenshot(), desktop.picture());
    CaptureProbe capture;
    Receiver receiver;
    capture.window()->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    capture.window()->showFullDesktop(true);
    QVERIFY(QTest::qWaitForWindowExposed(capture.window()));
    capture.loupe()->hide();
    QTRY_COMPARE(screenshot(), dimmed(desktop.picture()));

    // The other one photographs what is there: this one's overlay.
    const QTemporaryDir directory;
    const QString file = directory.filePath("selected.png");
    QProcess other;
    other.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    other.start(QCoreApplication::applicationFilePath(), {kOtherHost, file});
    QTRY_VERIFY(other.canReadLine());
    QCOMPARE(QImage(file).convertToFormat(QImage::Format_RGB32),
             dimmed(desktop.picture()).copy(kRegion));

    const auto endOther = [&] {
        other.write("finish\n");
        QTRY_COMPARE(other.state(), QProcess::NotRunning);
        QCOMPARE(other.exitStatus(), QProcess::NormalExit);
        QCOMPARE(other.exitCode(), 0);
    };
    const auto endThis = [&] {
        capture.drag(kRegion.topLeft(), kRegion.bottomRight());
        capture.window()->accept();
        QTRY_COMPARE(receiver.count, 1);
        QCOMPARE(receiver.image.convertToFormat(QImage::Format_RGB32),
                 desktop.picture().copy(kRegion));
        QTRY_VERIFY(capture.isGone());
    };
    if (otherFirst) {
        endOther();
        endThis();
    } else {
        endThis();
        endOther();
    }
    QTRY_COMPARE(screenshot(), desktop.picture());
}

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    if (app.arguments().value(1) == kOtherHost)
        return runOtherHost(app.arguments().value(2));
    tst_ScreenCaptureWnd_two_hosts test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ScreenCaptureWnd_two_hosts.moc"
