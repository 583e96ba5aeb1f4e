// SPDX-License-Identifier: MIT
#include "CaptureProbe.h"
#include "Overlay.h"
#include "Screen.h"

#include <QSocketNotifier>
#include <QTemporaryDir>
#include <cstdio>
#include <unistd.h>

namespace
{

const QRect kRegion(QPoint(300, 250), QPoint(649, 449));
const char* const kOtherHost = "--other-host";

/// Pixel by pixel on a dense screen, too.
QImage pixelsOf(QImage image)
{
    image.setDevicePixelRatio(1);
    return image.convertToFormat(QImage::Format_RGB32);
}

/// A host of its own, told through its standard input when to finish: 0 when its capture delivered
/// the picture that it saved in `file` beforehand.
int runOtherHost(const QString& file)
{
    CaptureProbe capture;
    Receiver receiver;
    capture.start(receiver);
    if (!QTest::qWaitForWindowExposed(capture.window()))
        return 2;
    capture.drag(kRegion);
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
    if (!QTest::qWaitFor([&] { return capture.isGone() && receiver.count > 0; }, kPatienceMs))
        return 4;
    return receiver.count == 1 && receiver.image == selected ? 0 : 1;
}

} // namespace

/// A capture on a real display with a window manager: what is grabbed, what is seen, and what a
/// person with mouse and keyboard gets.
class tst_ScreenCaptureWnd_desktops : public CaptureTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void everyCaptureGrabsAnew();
    void windowStaysOnTopOfLaterWindows();
    void movedWindowShowsAndDeliversWhatLiesThere();
    void movedRegionLeavesNoTrace();
    void partPaintedAnewIsAsItWas();
    void barsAreSeenOverTheCanvas();

    void mouseTakesACapture();
    void mouseAnnotates();
    void doubleClickOnTheCanvasFinishesOnce();
    void keyboardTypesText_data();
    void keyboardTypesText();

    void twoHostsEachGetTheirPicture_data();
    void twoHostsEachGetTheirPicture();

private:
    /// Begins a capture and waits until its overlay is what is on the screen.
    void showOverlay();
    /// The overlay with a region, without the bar, whose looks are the style's.
    QImage overlay(const QRect& region) const;
    QImage screen() const;
    QRect barArea() const;
    void expectDelivered(const QImage& picture);

    QScopedPointer<Desktop> m_desktop;
};

void tst_ScreenCaptureWnd_desktops::initTestCase()
{
    QCOMPARE(QGuiApplication::platformName(), QString("xcb"));
}

void tst_ScreenCaptureWnd_desktops::init()
{
    BehaviourTest::init();
    m_desktop.reset(new Desktop(1));
    QTRY_COMPARE(screenshot(), m_desktop->picture());
    m_receiver.reset(new Receiver);
    showOverlay();
}

void tst_ScreenCaptureWnd_desktops::showOverlay()
{
    restart();
    QVERIFY(QTest::qWaitForWindowActive(window()));
    QCOMPARE(window()->frameGeometry(), screenRect());
    m_capture->loupe()->hide();
    QTRY_COMPARE(pixelsOf(screenshot()), dimmed(m_desktop->picture()));
    m_capture->loupe()->show();
}

QRect tst_ScreenCaptureWnd_desktops::barArea() const
{
    return m_capture->mainBar()->isVisible() ? m_capture->mainBar()->geometry() : QRect();
}

QImage tst_ScreenCaptureWnd_desktops::overlay(const QRect& region) const
{
    return without(overlayWith(m_desktop->picture(), region, screenRect().size()), barArea());
}

QImage tst_ScreenCaptureWnd_desktops::screen() const
{
    return without(screenshot(), barArea());
}

void tst_ScreenCaptureWnd_desktops::expectDelivered(const QImage& picture)
{
    QTRY_COMPARE(m_receiver->count, 1);
    QVERIFY(m_receiver->finished);
    QCOMPARE(pixelsOf(m_receiver->image), picture);
    QTRY_VERIFY(m_capture->isGone());
}

// A desktop that changes under the running capture is not seen by it.
void tst_ScreenCaptureWnd_desktops::everyCaptureGrabsAnew()
{
    for (const quint32 seed : {2, 3}) {
        const QImage frozen = m_desktop->picture();
        m_desktop.reset(new Desktop(seed));
        m_capture->drag(screenRect());
        QCOMPARE(pixelsOf(window()->captureImage()), frozen);
        window()->hide();
        QTRY_COMPARE(screenshot(), m_desktop->picture());
        showOverlay();
    }
}

void tst_ScreenCaptureWnd_desktops::windowStaysOnTopOfLaterWindows()
{
    m_capture->drag(kRegion);
    QWidget later;
    later.setGeometry(400, 300, 200, 150);
    later.show();
    QTRY_VERIFY(later.windowHandle()->isExposed());
    QTRY_COMPARE(screen(), overlay(kRegion));
}

void tst_ScreenCaptureWnd_desktops::movedWindowShowsAndDeliversWhatLiesThere()
{
    constexpr QPoint kMoved(-37, 53);
    const QRect selected = kRegion.translated(kMoved);
    const QRect inside = selected.adjusted(10, 10, -10, -10);
    m_capture->loupe()->hide();
    window()->move(kMoved);
    QTRY_COMPARE(screenshot(), drawnOn(m_desktop->picture(), [&](QPainter& painter) {
                     painter.fillRect(screenRect().translated(kMoved), QColor(0, 0, 0, 100));
                 }));
    m_capture->drag(kRegion);
    QTRY_COMPARE(screenshot().copy(inside), m_desktop->picture().copy(inside));
    window()->accept();
    expectDelivered(m_desktop->picture().copy(selected));
}

void tst_ScreenCaptureWnd_desktops::movedRegionLeavesNoTrace()
{
    const QRect moved = kRegion.translated(37, -53);
    m_capture->drag(kRegion);
    QTRY_COMPARE(screen(), overlay(kRegion));
    m_capture->drag(kRegion.center(), moved.center());
    QTRY_COMPARE(screen(), overlay(moved));
    m_capture->drag(moved.topLeft(), moved.topLeft() + QPoint(90, 20));
    QTRY_COMPARE(screen(), overlay(moved.adjusted(90, 20, 0, 0)));
}

// Also on a dense screen.
void tst_ScreenCaptureWnd_desktops::partPaintedAnewIsAsItWas()
{
    const QPoint corner(101, 103);
    m_capture->drag(corner, QPoint(203, 177));
    // The handle stands one pixel outside, and is not cut off at what was dimmed last.
    QTRY_COMPARE(screenshot().pixelColor((corner - QPoint(1, 1)) * m_desktop->devicePixelRatio()),
                 kSelectionColor);
    window()->reset();
    const QImage loupe = pixelsOf(m_capture->loupe()->grab().toImage());
    const QRect place(m_capture->loupe()->pos() * m_desktop->devicePixelRatio(), loupe.size());
    QTRY_COMPARE(pixelsOf(screenshot()).copy(place), loupe);
    m_capture->loupe()->hide();
    QTRY_COMPARE(pixelsOf(screenshot()), dimmed(m_desktop->picture()));
}

void tst_ScreenCaptureWnd_desktops::barsAreSeenOverTheCanvas()
{
    m_capture->drag(screenRect());
    for (const MainItem tool : {Scribble, Ellipse}) {
        clickPointer(m_capture->at(tool)->mapToGlobal(QPoint(15, 13)));
        QTRY_COMPARE(m_capture->checkedTools(), Tools{tool});
    }
    for (QWidget* bar : {m_capture->mainBar(), m_capture->subBar()}) {
        QVERIFY(m_capture->canvas()->geometry().contains(bar->geometry()));
        QTRY_COMPARE(screenshot().copy(bar->geometry()), pixelsOf(bar->grab().toImage()));
        QCOMPARE(screenshot().pixelColor(bar->geometry().topLeft()), QColor(Qt::white));
    }
}

void tst_ScreenCaptureWnd_desktops::mouseTakesACapture()
{
    dragPointer({kRegion.topLeft(), kRegion.center(), kRegion.bottomRight()});
    QTRY_COMPARE(m_capture->region()->rect(), kRegion);
    QTRY_COMPARE(screen(), overlay(kRegion));
    clickPointer(kRegion.center(), 2);
    expectDelivered(m_desktop->picture().copy(kRegion));
    QTRY_COMPARE(screenshot(), m_desktop->picture());
}

void tst_ScreenCaptureWnd_desktops::mouseAnnotates()
{
    const QColor skyBlue(56, 148, 228);
    const QPoint origin = kRegion.topLeft();
    m_capture->annotate(kRegion, Scribble);
    const QPen pen = m_capture->pen(Scribble);
    dragPointer({origin + QPoint(50, 50), origin + QPoint(120, 80), origin + QPoint(150, 150)});
    clickPointer(m_capture->at(Rectangle)->mapToGlobal(QPoint(15, 13)));
    QTRY_COMPARE(m_capture->checkedTools(), Tools{Rectangle});
    const QPoint cell = m_capture->palette()->cellRect(1, 5).center();
    clickPointer(m_capture->palette()->mapToGlobal(cell));
    QTRY_COMPARE(m_capture->pen(Rectangle).color(), skyBlue);
    m_capture->widthSlider()->setFocus();
    xdotool({"key", "End"});
    QTRY_COMPARE(m_capture->pen(Rectangle).width(), 30);
    dragPointer({origin + QPoint(60, 60), origin + QPoint(100, 100), origin + QPoint(180, 140)});
    // Resized by its corner before it is delivered.
    dragPointer({origin + QPoint(180, 140), origin + QPoint(190, 145), origin + QPoint(200, 160)});
    QTRY_COMPARE(m_capture->frame()->rect(), QRect(QPoint(60, 60), QPoint(200, 160)));

    const QImage scribbled = drawnOn(m_desktop->picture().copy(kRegion), [&pen](QPainter& painter) {
        painter.setPen(pen);
        painter.drawLine(50, 50, 120, 80);
        painter.drawLine(120, 80, 150, 150);
    });
    QCOMPARE(pixelsOf(m_capture->canvas()->image()), scribbled);
    const QRect beside(220, 10, 100, 150);
    QCOMPARE(screenshot().copy(beside.translated(origin)), scribbled.copy(beside));
    m_capture->choose(Scribble);
    const QImage drawn = drawnOn(scribbled, [&](QPainter& painter) {
        painter.setPen(QPen(skyBlue, 30, Qt::SolidLine, Qt::RoundCap, Qt::MiterJoin));
        painter.drawRect(QRect(QPoint(60, 60), QPoint(200, 160)));
    });
    const QRect inside = QRect(QPoint(), kRegion.size()).adjusted(10, 10, -10, -10);
    QTRY_COMPARE(screenshot().copy(inside.translated(origin)), drawn.copy(inside));
    xdotool({"key", "Return"});
    expectDelivered(drawn);
}

void tst_ScreenCaptureWnd_desktops::doubleClickOnTheCanvasFinishesOnce()
{
    m_capture->annotate(kRegion, Scribble);
    clickPointer(kRegion.center(), 2);
    QTRY_COMPARE(m_receiver->count, 1);
    QVERIFY(m_receiver->finished);
    QCOMPARE(m_receiver->image.size(), kRegion.size());
    QTRY_VERIFY(m_capture->isGone());
}

void tst_ScreenCaptureWnd_desktops::keyboardTypesText_data()
{
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QString>("text");
    QTest::newRow("two lines") << "us" << QStringLiteral("hello\nworld");
    QTest::newRow("German") << "de" << QStringLiteral("Grüße");
    QTest::newRow("Hebrew, right to left") << "il" << QStringLiteral("שלום");
}

// On a keyboard that has the letters: xdotool's own mapping of others comes too late for some.
void tst_ScreenCaptureWnd_desktops::keyboardTypesText()
{
    QFETCH(QString, layout);
    QFETCH(QString, text);
    QCOMPARE(QProcess::execute("setxkbmap", {layout}), 0);
    const QPoint origin = kRegion.topLeft();
    m_capture->annotate(kRegion, Text);
    m_capture->fontBox()->setCurrentText("18");
    m_capture->canvas()->setTextColor(Qt::yellow);
    dragPointer({origin + QPoint(40, 40), origin + QPoint(100, 80), origin + QPoint(240, 140)});
    QTRY_VERIFY(m_capture->textBox()->hasFocus());
    for (const QString& line : text.split('\n')) {
        if (!m_capture->textBox()->toPlainText().isEmpty())
            xdotool({"key", "Return"});
        xdotool({"type", line});
    }
    QTRY_COMPARE(m_capture->textBox()->toPlainText(), text);
    QCOMPARE(m_receiver->count, 0);
    QCOMPARE(QProcess::execute("setxkbmap", {"us"}), 0);
    QFont font = QApplication::font("QTextEdit");
    font.setPointSize(18);
    // Beside the glyphs the box lets everything through.
    const QImage before = m_desktop->picture().copy(kRegion);
    const QRect box(QPoint(44, 44), QPoint(236, 136));
    window()->accept();
    expectDelivered(withText(before, box, font, {{text, Qt::yellow}}));
}

void tst_ScreenCaptureWnd_desktops::twoHostsEachGetTheirPicture_data()
{
    QTest::addColumn<bool>("otherFirst");
    QTest::newRow("the later one ends first") << true;
    QTest::newRow("the earlier one ends first") << false;
}

void tst_ScreenCaptureWnd_desktops::twoHostsEachGetTheirPicture()
{
    QFETCH(bool, otherFirst);
    m_capture->loupe()->hide();
    QTRY_COMPARE(screenshot(), dimmed(m_desktop->picture()));
    // The other one photographs what is there: this one's overlay.
    const QTemporaryDir directory;
    const QString file = directory.filePath("selected.png");
    QProcess other;
    other.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    other.start(QCoreApplication::applicationFilePath(), {kOtherHost, file});
    QTRY_VERIFY(other.canReadLine());
    QCOMPARE(pixelsOf(QImage(file)), dimmed(m_desktop->picture()).copy(kRegion));

    for (const bool endsOther : {otherFirst, !otherFirst}) {
        if (endsOther) {
            other.write("finish\n");
            QTRY_COMPARE(other.state(), QProcess::NotRunning);
            QCOMPARE(other.exitStatus(), QProcess::NormalExit);
            QCOMPARE(other.exitCode(), 0);
        } else {
            m_capture->drag(kRegion);
            window()->accept();
            expectDelivered(m_desktop->picture().copy(kRegion));
        }
    }
    QTRY_COMPARE(screenshot(), m_desktop->picture());
}

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    if (app.arguments().value(1) == kOtherHost)
        return runOtherHost(app.arguments().value(2));
    tst_ScreenCaptureWnd_desktops test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ScreenCaptureWnd_desktops.moc"
