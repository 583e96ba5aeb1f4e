// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "CaptureProbe.h"
#include "Pictures.h"
#include "Screen.h"
#include "ScribbleArea.h"

#include <QProcess>
#include <QPushButton>

namespace
{

const QRect kRegion(QPoint(100, 80), QPoint(399, 279));
const char* const kAnnotations[] = {"scribble", "Rectangle", "Mosaic"};

/// A program that manages the display while one lives.
class Manager
{
public:
    explicit Manager(const QString& program)
    {
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start(program, QStringList());
    }
    ~Manager()
    {
        m_process.terminate();
        m_process.waitForFinished();
    }
    Manager(const Manager&) = delete;
    Manager& operator=(const Manager&) = delete;
    bool isRunning() { return m_process.waitForStarted(); }

private:
    QProcess m_process;
};

QByteArray outputOf(const QString& program, const QStringList& words)
{
    QProcess process;
    process.start(program, words);
    process.waitForFinished();
    return process.readAllStandardOutput();
}

/// A picture as a display of 16 bits shows it.
QImage asShown(const QImage& picture)
{
    if (QGuiApplication::primaryScreen()->depth() >= 24)
        return picture.convertToFormat(QImage::Format_RGB32);
    return picture.convertToFormat(QImage::Format_RGB16).convertToFormat(QImage::Format_RGB32);
}

// Beside the region are its handles and the label that tells its size.
constexpr int kHandlesPx = 10;
constexpr int kLabelPx = 40;

/// The dimmed desktop as the overlay shows it, without what lies on it: what is grabbed from the
/// display, and what is painted back on it, has the display's depth.
QImage dimmedAsShown(const QImage& picture)
{
    return asShown(dimmed(asShown(picture)));
}

QImage besideRegion(const CaptureProbe& capture, const QImage& overlay)
{
    const QRect region =
        capture.region()->rect().adjusted(-kHandlesPx, -kLabelPx, kHandlesPx, kHandlesPx);
    return without(without(overlay, region), capture.mainBar()->geometry());
}

} // namespace

/// Whole captures on desktops of many kinds. SCREENCAPTURE_TEST_MANAGER names the program that
/// manages the display: none, a window manager or a compositor.
class tst_faults_desktops : public BehaviourTest
{
    Q_OBJECT

private slots:
    void initTestCase() { startManager(); }
    void cleanupTestCase() { m_manager.reset(); }
    void init();
    void cleanup();
    void overlayCoversTheDesktop();
    void regionIsDelivered();
    void annotationsAreUndone();
    void annotationsAreDelivered();
    void mosaicShowsBlocksOfTheDesktop();
    void windowRaisedAboveDoesNoHarm();
    void managerThatEndsInTheMiddle();

private:
    void startManager();
    /// The selected part of the desktop is delivered.
    void verifyDelivery();
    /// The canvas after a stroke with a tool across it.
    ScribbleArea* annotate(const char* tool);

    QScopedPointer<Manager> m_manager;
    QScopedPointer<Desktop> m_desktop;
    QScopedPointer<CaptureProbe> m_capture;
    Receiver m_receiver;
};

// A window manager gives an ordinary window another parent; a compositor makes a window of its
// name.
void tst_faults_desktops::startManager()
{
    const QString program = qEnvironmentVariable("SCREENCAPTURE_TEST_MANAGER");
    if (program.isEmpty())
        return;
    m_manager.reset(new Manager(program));
    QVERIFY(m_manager->isRunning());
    if (program == "xcompmgr") {
        QTRY_VERIFY(!outputOf("xdotool", {"search", "--name", "^xcompmgr$"}).isEmpty());
    } else {
        QTRY_VERIFY(outputOf("xwininfo", {"-root", "-events"}).contains("SubstructureRedirect"));
    }
}

void tst_faults_desktops::init()
{
    BehaviourTest::init();
    m_receiver.count = 0;
    m_desktop.reset(new Desktop(11));
    QVERIFY(QTest::qWaitForWindowExposed(m_desktop.data()));
    QTRY_COMPARE(screenshot(), asShown(m_desktop->picture()));
    m_capture.reset(new CaptureProbe);
    m_capture->window()->connectTo(&m_receiver, SLOT(onCaptured(QImage, bool)));
    m_capture->window()->showFullDesktop(true);
    QVERIFY(QTest::qWaitForWindowExposed(m_capture->window()));
}

void tst_faults_desktops::cleanup()
{
    m_capture.reset();
    m_desktop.reset();
    BehaviourTest::cleanup();
}

void tst_faults_desktops::overlayCoversTheDesktop()
{
    QTRY_COMPARE(m_capture->window()->size(), screenRect().size());
    m_capture->drag(kRegion);
    const QRect inside = kRegion.adjusted(10, 10, -10, -10);
    const QPoint moved = m_capture->window()->mapToGlobal(QPoint(0, 0));
    QTRY_COMPARE(screenshot().copy(inside.translated(moved)),
                 asShown(m_desktop->picture()).copy(inside));
    // Some window managers put a title bar above the overlay and so a part of it off the screen.
    const QRect seen = screenRect().translated(-moved) & screenRect();
    QVERIFY(seen.height() > screenRect().height() / 2);
    QTRY_COMPARE(
        besideRegion(*m_capture, screenshot().copy(screenRect().translated(moved))).copy(seen),
        besideRegion(*m_capture, dimmedAsShown(m_desktop->picture())).copy(seen));
}

void tst_faults_desktops::verifyDelivery()
{
    m_capture->window()->accept();
    QTRY_COMPARE(m_receiver.count, 1);
    QVERIFY(m_receiver.finished);
    QCOMPARE(m_receiver.image.convertToFormat(QImage::Format_RGB32),
             asShown(m_desktop->picture()).copy(kRegion));
    QTRY_VERIFY(m_capture->isGone());
}

void tst_faults_desktops::regionIsDelivered()
{
    m_capture->drag(kRegion);
    verifyDelivery();
    QTRY_COMPARE(screenshot(), asShown(m_desktop->picture()));
}

ScribbleArea* tst_faults_desktops::annotate(const char* tool)
{
    for (QPushButton* button : m_capture->mainBar()->findChildren<QPushButton*>()) {
        if (button->toolTip() == tool)
            button->click();
    }
    auto* canvas = m_capture->window()->findChild<ScribbleArea*>();
    Mouse(canvas).drag(QPoint(50, 50), QPoint(150, 120));
    canvas->completeScribble();
    return canvas;
}

void tst_faults_desktops::annotationsAreUndone()
{
    m_capture->drag(kRegion);
    const QImage selected = asShown(m_desktop->picture()).copy(kRegion);
    for (const char* tool : kAnnotations) {
        ScribbleArea* const canvas = annotate(tool);
        QVERIFY2(canvas->image() != selected, tool);
        while (canvas->canUndo())
            canvas->undo();
        QVERIFY2(canvas->image() == selected, tool);
    }
    verifyDelivery();
}

void tst_faults_desktops::annotationsAreDelivered()
{
    m_capture->drag(kRegion);
    QImage annotated = asShown(m_desktop->picture()).copy(kRegion);
    for (const char* tool : kAnnotations) {
        const QImage before = annotated;
        annotated = annotate(tool)->image().copy();
        QVERIFY2(annotated != before, tool);
    }
    m_capture->window()->onBtnSend();
    QTRY_COMPARE(m_receiver.count, 1);
    QVERIFY(m_receiver.finished);
    QCOMPARE(m_receiver.image, annotated);
}

void tst_faults_desktops::mosaicShowsBlocksOfTheDesktop()
{
    constexpr int kBlockPx = 2;
    constexpr QPoint onTheStroke(100, 85);
    m_capture->drag(kRegion);
    const QImage selected = asShown(m_desktop->picture()).copy(kRegion);
    QCOMPARE(annotate("Mosaic")->image().pixel(onTheStroke),
             inBlocks(selected, kBlockPx).pixel(onTheStroke));
}

// Not every window manager keeps the overlay on top.
void tst_faults_desktops::windowRaisedAboveDoesNoHarm()
{
    QWidget other(nullptr, Qt::X11BypassWindowManagerHint);
    other.setGeometry(kRegion.adjusted(20, 20, -20, -20));
    other.show();
    other.raise();
    QVERIFY(QTest::qWaitForWindowExposed(&other));
    m_capture->drag(kRegion);
    verifyDelivery();
}

void tst_faults_desktops::managerThatEndsInTheMiddle()
{
    m_capture->drag(kRegion);
    m_manager.reset();
    QCoreApplication::processEvents();
    QVERIFY(m_capture->window()->isVisible());
    verifyDelivery();
    startManager();
}

QTEST_MAIN(tst_faults_desktops)
#include "tst_faults_desktops.moc"
