// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "Screen.h"
#include "ScribbleArea.h"
#include "XServer.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QPushButton>

namespace
{

const QRect kRegion(QPoint(300, 200), QPoint(699, 499));

/// Returns what the program prints.
QByteArray xrandr(const QString& words)
{
    QProcess process;
    process.start("xrandr", words.split(' '));
    if (!process.waitForFinished(kPatienceMs) || process.exitCode() != 0)
        qWarning() << "xrandr" << words << process.readAllStandardError();
    return process.readAllStandardOutput();
}

// The only screen of a display stays in Qt's list when it is off, under the display's name.
bool isOn()
{
    return QGuiApplication::primaryScreen()->name() == "screen";
}

void switchOff()
{
    xrandr("--fb 1024x768 --output screen --off");
    QTRY_VERIFY(!isOn());
}

void switchOffAndShrink()
{
    switchOff();
    xrandr("--fb 640x480");
    QTRY_COMPARE(XServer().desktop().size(), QSize(640, 480));
}

void switchOn()
{
    xrandr("--fb 1024x768 --output screen --mode 1024x768");
    QTRY_VERIFY(isOn());
    QTRY_COMPARE(QGuiApplication::screens().size(), 1);
    QTRY_COMPARE(screenRect().size(), QSize(1024, 768));
    QTRY_COMPARE(XServer().desktop().size(), QSize(1024, 768));
}

} // namespace

/// Screens that come, go and change while a capture runs: the picture was taken before, so the
/// region is delivered as it was selected, or the capture is cancelled.
class tst_faults_layout : public BehaviourTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void monitorsChangeNothingWhereQtDoesNotSeeThem();
    void screenIsSwitchedOff();
    void screenShrinks();
    void screenThatTurnsUprightCancels();
    void screenChangesWhileAnnotating();
    void captureWithoutAScreen();

private:
    void begin();
    void verifyUnchanged();
    void finish();

    QScopedPointer<Desktop> m_desktop;
    QScopedPointer<CaptureProbe> m_capture;
    Receiver m_receiver;
    QImage m_selected;
};

// The display cannot turn its screen, but it can have one that is higher than wide.
void tst_faults_layout::initTestCase()
{
    xrandr("--newmode upright 25 480 500 520 540 640 650 660 670");
    xrandr("--addmode screen upright");
}

void tst_faults_layout::init()
{
    BehaviourTest::init();
    QTRY_COMPARE(screenRect().size(), QSize(1024, 768));
    m_desktop.reset(new Desktop(13));
    QVERIFY(QTest::qWaitForWindowExposed(m_desktop.data()));
    QTRY_COMPARE(screenshot(), m_desktop->picture());
    begin();
    QVERIFY(QTest::qWaitForWindowExposed(m_capture->window()));
    m_capture->drag(kRegion);
    QCOMPARE(m_capture->region()->rect(), kRegion);
    m_selected = m_desktop->picture().copy(kRegion);
}

void tst_faults_layout::begin()
{
    m_receiver.count = 0;
    m_capture.reset(new CaptureProbe);
    m_capture->window()->connectTo(&m_receiver, SLOT(onCaptured(QImage, bool)));
    m_capture->window()->showFullDesktop(true);
}

void tst_faults_layout::cleanup()
{
    m_capture.reset();
    m_desktop.reset();
    switchOn();
    BehaviourTest::cleanup();
}

void tst_faults_layout::finish()
{
    m_capture->window()->accept();
    QTRY_COMPARE(m_receiver.count, 1);
    QVERIFY(m_receiver.finished);
    QCOMPARE(m_receiver.image.convertToFormat(QImage::Format_RGB32), m_selected);
    QTRY_VERIFY(m_capture->isGone());
}

void tst_faults_layout::verifyUnchanged()
{
    QCOMPARE(m_capture->region()->rect(), kRegion);
    QCOMPARE(m_capture->window()->geometry(), screenRect());
    QCOMPARE(m_capture->window()->captureImage().convertToFormat(QImage::Format_RGB32), m_selected);
    const QRect inside = kRegion.adjusted(10, 10, -10, -10);
    QTRY_COMPARE(screenshot().copy(inside), m_desktop->picture().copy(inside));
}

// The window manager sees them. To Qt 6 they are screens, and a screen that is added cancels.
void tst_faults_layout::monitorsChangeNothingWhereQtDoesNotSeeThem()
{
    xrandr("--setmonitor left 512/100x768/100+0+0 screen");
    xrandr("--setmonitor right 512/100x768/100+512+0 none");
    QVERIFY(xrandr("--listmonitors").contains("left"));
    const bool qtSeesThem = QLibraryInfo::version().majorVersion() >= 6;
    if (qtSeesThem) {
        QTRY_COMPARE(m_receiver.count, 1);
        QVERIFY(!m_receiver.finished);
        QTRY_VERIFY(m_capture->isGone());
    } else {
        verifyUnchanged();
    }
    xrandr("--delmonitor right");
    xrandr("--delmonitor left");
    QVERIFY(!xrandr("--listmonitors").contains("left"));
    if (qtSeesThem)
        return;
    verifyUnchanged();
    finish();
}

void tst_faults_layout::screenIsSwitchedOff()
{
    switchOff();
    finish();
}

void tst_faults_layout::screenShrinks()
{
    switchOffAndShrink();
    finish();
}

void tst_faults_layout::screenThatTurnsUprightCancels()
{
    xrandr("--output screen --mode upright");
    QTRY_COMPARE(m_receiver.count, 1);
    QVERIFY(!m_receiver.finished);
    QVERIFY(m_receiver.image.isNull());
    QTRY_VERIFY(m_capture->isGone());
}

void tst_faults_layout::screenChangesWhileAnnotating()
{
    m_capture->mainBar()->findChild<QPushButton*>()->click();
    auto* canvas = m_capture->window()->findChild<ScribbleArea*>();
    const Mouse mouse(canvas);
    mouse.press(QPoint(50, 50));
    switchOffAndShrink();
    mouse.release(QPoint(90, 90));
    m_selected = canvas->image().convertToFormat(QImage::Format_RGB32);
    QVERIFY(m_selected != m_desktop->picture().copy(kRegion));
    finish();
}

void tst_faults_layout::captureWithoutAScreen()
{
    finish();
    switchOff();
    begin();
    m_capture->drag(QPoint(10, 10), QPoint(60, 60));
    m_capture->window()->reject();
    QTRY_COMPARE(m_receiver.count, 1);
    QVERIFY(!m_receiver.finished);
}

QTEST_MAIN(tst_faults_layout)
#include "tst_faults_layout.moc"
