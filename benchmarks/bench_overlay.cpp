// SPDX-License-Identifier: MIT
// One measurement of the real window, or of a bare widget that does the least that could be done in
// its place, driven by real X events. Prints one number; ./bench runs all of them and compares.
//   bench_overlay WHAT library|floor
//   bench_overlay exec COMMAND       for any other program that covers the screen when it starts
// Of the library also with QT_SCALE_FACTOR set: the pointer goes over the same physical pixels.
#include "BareOverlay.h"
#include "Driver.h"
#include "Mouse.h"
#include "ScreenCaptureWnd.h"
#include "ScribbleArea.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QScreen>
#include <QSlider>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <vector>

namespace
{

/// Tool buttons by their number from the left.
constexpr int kNoTool = -1;
constexpr int kPen = 0;
constexpr int kMosaic = 5;
constexpr int kMoves = 120;
constexpr int kMovesPerSecond = 60;

/// In physical pixels, which the driver counts in.
QSize screenSize()
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen->size() * screen->devicePixelRatio();
}

double mainThreadMs()
{
    timespec t = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

/// What is on the screen: the library's window or the bare one.
class Subject
{
public:
    explicit Subject(bool library)
        : m_library(library)
    {
    }
    QWidget* show(BareOverlay::Kind kind)
    {
        if (!m_library) {
            m_window = new BareOverlay(kind);
            m_window->setGeometry(QRect(QPoint(), screenSize()));
            m_window->show();
        } else {
            ScreenCaptureWnd* window = ScreenCaptureWnd::screenCaptureWnd();
            window->showFullDesktop(true);
            m_window = window;
        }
        return m_window;
    }
    bool isLibrary() const { return m_library; }
    QWidget* window() const { return m_window; }

    /// The tool button with that number, from the left.
    void chooseTool(int number) const
    {
        const auto buttons =
            m_window->findChild<QWidget*>("mainToolBar")
                ->findChildren<QAbstractButton*>(QString(), Qt::FindDirectChildrenOnly);
        buttons.at(number)->click();
    }

private:
    bool m_library;
    QWidget* m_window = nullptr;
};

/// Runs `steps` in a thread beside the event loop.
void whileDriving(const std::function<void()>& steps)
{
    QEventLoop loop;
    QThread* driver = QThread::create(steps);
    QObject::connect(driver, &QThread::finished, &loop, &QEventLoop::quit);
    driver->start();
    loop.exec();
    driver->wait();
    delete driver;
}

/// Moves evenly from `from` to `to` and back.
QPoint onTheWay(const QPoint& from, const QPoint& to, int step)
{
    const double part = std::abs(double(step % kMoves) / (kMoves / 2.0) - 1.0);
    return from + (to - from) * (1.0 - part);
}

double processorTimePerMove(Driver& driver, const QPoint& from, const QPoint& to)
{
    double spent = 0;
    const auto now = [&spent](double sign) {
        QMetaObject::invokeMethod(
            qApp, [&spent, sign] { spent += sign * mainThreadMs(); }, Qt::BlockingQueuedConnection);
    };
    driver.moveTo(from);
    driver.settle();
    now(-1);
    for (int step = 0; step < kMoves; ++step) {
        driver.moveTo(onTheWay(from, to, step));
        QThread::usleep(1000000UL / kMovesPerSecond);
    }
    driver.settle();
    now(+1);
    return spent / kMoves;
}

void selectThreeQuarters(Driver& driver, const QSize& size)
{
    const QPoint from(size.width() / 16, size.height() / 16);
    const QPoint to(size.width() * 15 / 16, size.height() * 13 / 16);
    driver.drag(from, to);
    driver.settle();
}

double measureDrag(Subject& subject, Driver& driver)
{
    subject.show(BareOverlay::Selecting);
    double result = 0;
    const QSize size = screenSize();
    whileDriving([&] {
        driver.waitForWindow();
        driver.moveTo(QPoint(size.width() / 10, size.height() / 10));
        driver.press();
        result = processorTimePerMove(driver, QPoint(size.width() / 5, size.height() / 5),
                                      QPoint(size.width() * 9 / 10, size.height() * 9 / 10));
        driver.release();
    });
    return result;
}

// A region that stands already is dragged by its middle or by its corner.
double measureStandingRegion(Subject& subject, Driver& driver, BareOverlay::Kind kind)
{
    subject.show(kind);
    double result = 0;
    const QSize size = screenSize();
    const QPoint first(size.width() / 10, size.height() / 10);
    const QPoint last(size.width() / 2, size.height() / 2);
    const QPoint grip = kind == BareOverlay::Moving ? (first + last) / 2 : last;
    whileDriving([&] {
        driver.waitForWindow();
        driver.drag(first, last);
        driver.moveTo(grip);
        driver.settle();
        driver.press();
        result = processorTimePerMove(driver, grip,
                                      grip + QPoint(size.width() * 2 / 5, size.height() * 2 / 5));
        driver.release();
    });
    return result;
}

double measureIdle(Subject& subject, Driver& driver)
{
    subject.show(BareOverlay::Loupe);
    double result = 0;
    const QSize size = screenSize();
    whileDriving([&] {
        driver.waitForWindow();
        result = processorTimePerMove(driver, QPoint(100, 100),
                                      QPoint(size.width() - 300, size.height() - 300));
    });
    return result;
}

double measureStroke(Subject& subject, Driver& driver, int tool, BareOverlay::Kind kind)
{
    subject.show(kind);
    double result = 0;
    const QSize size = screenSize();
    whileDriving([&] {
        driver.waitForWindow();
        selectThreeQuarters(driver, size);
        if (subject.isLibrary()) {
            QMetaObject::invokeMethod(
                qApp,
                [&] {
                    subject.chooseTool(tool);
                    // Both sliders to their end: brush 45.
                    for (QSlider* slider : subject.window()->findChildren<QSlider*>())
                        if (slider->maximum() == 30 && tool == kMosaic)
                            slider->setValue(30);
                },
                Qt::BlockingQueuedConnection);
        }
        driver.moveTo(QPoint(size.width() / 8, size.height() / 8));
        driver.settle();
        driver.press();
        result = processorTimePerMove(driver, QPoint(size.width() / 8, size.height() / 8),
                                      QPoint(size.width() * 7 / 8, size.height() * 3 / 4));
        driver.release();
    });
    return result;
}

double measureFirstFrame(Subject& subject, Driver& driver)
{
    QElapsedTimer timer;
    double result = 0;
    // The desktop is white; dimmed it is something else, first and last of all in the corners.
    whileDriving([&] {
        timer.start();
        QMetaObject::invokeMethod(
            qApp, [&] { subject.show(BareOverlay::FirstFrame); }, Qt::BlockingQueuedConnection);
        driver.waitForDimmedCorners();
        result = double(timer.nsecsElapsed()) / 1e6;
    });
    return result;
}

/// The program to start: one around the library, one around the bare widget, or another one.
QStringList commandOf(const QString& subject)
{
    const QString here = QCoreApplication::applicationDirPath();
    if (subject == "library")
        return {here + "/../host/capture-host", "--once"};
    if (subject == "floor")
        return {QCoreApplication::applicationFilePath(), "bare", "floor"};
    return subject.split(' ');
}

// From starting a program until it covers the screen.
double measureExec(const QString& subject, Driver& driver)
{
    QStringList command = commandOf(subject);
    QProcess process;
    process.setProgram(command.takeFirst());
    process.setArguments(command);
    QElapsedTimer timer;
    timer.start();
    process.start();
    driver.waitForCoveredCorners();
    const double result = double(timer.nsecsElapsed()) / 1e6;
    process.kill();
    process.waitForFinished();
    return result;
}

double measureLatency(Subject& subject, Driver& driver, int tool, BareOverlay::Kind kind,
                      double quantile)
{
    subject.show(kind);
    std::vector<double> times;
    const QSize size = screenSize();
    whileDriving([&] {
        driver.waitForWindow();
        if (tool >= 0) {
            selectThreeQuarters(driver, size);
            if (subject.isLibrary())
                QMetaObject::invokeMethod(
                    qApp, [&] { subject.chooseTool(tool); }, Qt::BlockingQueuedConnection);
        }
        QPoint from(size.width() / 8, size.height() / 8);
        driver.moveTo(from);
        driver.settle();
        driver.press();
        const QPoint to(size.width() * 3 / 4, size.height() * 5 / 8);
        driver.moveTo(from + QPoint(20, 20));
        driver.settle();
        for (int i = 1; i <= kMoves; ++i) {
            const QPoint p = from + (to - from) * (double(i) / kMoves) + QPoint(20, 20);
            // Just inside the corner that is dragged, or under the pen.
            const QPoint watched = tool >= 0 ? p : p - QPoint(2, 2);
            times.push_back(driver.moveAndWait(p, watched));
            QThread::usleep(1000000 / kMovesPerSecond);
        }
        driver.release();
    });
    std::sort(times.begin(), times.end());
    return times.at(std::min(times.size() - 1, size_t(double(times.size()) * quantile)));
}

double memoryMb(const char* field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        qFatal("cannot read the memory of the process");
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(field))
            return line.simplified().split(' ').at(1).toDouble() / 1024.0;
    }
    return 0;
}

double megabytes(const QSize& size)
{
    constexpr double kBytesPerPixel = 4;
    return double(size.width()) * size.height() * kBytesPerPixel / 1024.0 / 1024.0;
}

// A capture with a region dragged out, above what an empty program takes. The floor is the desktop
// picture and what the window is painted into.
double measurePeakMemory(Subject& subject, Driver& driver, const std::vector<int>& tools)
{
    if (!subject.isLibrary())
        return 2 * megabytes(screenSize());
    QWidget empty;
    // Away from the corners, which tell when the desktop is dimmed.
    empty.setGeometry(QRect(QPoint(300, 300), QSize(100, 100)));
    empty.show();
    QCoreApplication::processEvents();
    const double before = memoryMb("VmHWM:");
    subject.show(BareOverlay::Selecting);
    whileDriving([&] {
        driver.waitForWindow();
        selectThreeQuarters(driver, screenSize());
        for (const int tool : tools) {
            QMetaObject::invokeMethod(
                qApp, [&] { subject.chooseTool(tool); }, Qt::BlockingQueuedConnection);
            driver.drag(QPoint(screenSize().width() / 8, screenSize().height() / 8),
                        QPoint(screenSize().width() / 2, screenSize().height() / 2));
        }
        driver.settle();
    });
    return memoryMb("VmHWM:") - before;
}

// A hundred strokes of 300 x 300 pixels; the floor is the pixels of their history.
double measureStrokesMemory(Subject& subject, Driver& driver)
{
    constexpr int kStrokes = 100;
    constexpr int kSidePx = 300;
    if (!subject.isLibrary())
        return kStrokes * megabytes(QSize(kSidePx, kSidePx));
    subject.show(BareOverlay::Selecting);
    whileDriving([&] {
        driver.waitForWindow();
        selectThreeQuarters(driver, screenSize());
    });
    subject.chooseTool(kPen);
    auto* canvas = subject.window()->findChild<ScribbleArea*>();
    const auto stroke = [canvas](int i) {
        const QPoint from(10 + (i % 5) * 310, 10 + (i / 5 % 3) * 310);
        Mouse(canvas).drag(QRect(from, QSize(kSidePx, kSidePx)));
        QCoreApplication::processEvents();
    };
    stroke(0);
    const double before = memoryMb("VmRSS:");
    for (int i = 0; i < kStrokes; ++i)
        stroke(i);
    return memoryMb("VmRSS:") - before;
}

// From done to the host's slot; the floor is a copy of the region.
double measureDone(Subject& subject, Driver& driver)
{
    subject.show(BareOverlay::Selecting);
    whileDriving([&] {
        driver.waitForWindow();
        selectThreeQuarters(driver, screenSize());
    });
    QElapsedTimer timer;
    double result = 0;
    if (subject.isLibrary()) {
        auto* window = qobject_cast<ScreenCaptureWnd*>(subject.window());
        QEventLoop loop;
        QObject::connect(
            window, &ScreenCaptureWnd::captureFinished, &loop,
            [&](const QImage& /*picture*/, bool /*finished*/) {
                result = double(timer.nsecsElapsed()) / 1e6;
                loop.quit();
            },
            Qt::QueuedConnection);
        timer.start();
        window->accept();
        loop.exec();
    } else {
        const QSize size = screenSize();
        QImage desktop(size, QImage::Format_RGB32);
        desktop.fill(Qt::white);
        timer.start();
        const QImage region = desktop.copy(QRect(size.width() / 16, size.height() / 16,
                                                 size.width() * 7 / 8, size.height() * 3 / 4));
        result = double(timer.nsecsElapsed()) / 1e6;
    }
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: bench_overlay WHAT library|floor\n");
        return 2;
    }
    const QString what = argv[1];
    Subject subject(QString(argv[2]) == "library");
    if (what == "bare") {
        subject.show(BareOverlay::FirstFrame);
        return QApplication::exec();
    }
    Driver driver;
    double result = 0;
    if (what == "exec")
        result = measureExec(argv[2], driver);
    else if (what == "first-frame")
        result = measureFirstFrame(subject, driver);
    else if (what == "drag")
        result = measureDrag(subject, driver);
    else if (what == "move")
        result = measureStandingRegion(subject, driver, BareOverlay::Moving);
    else if (what == "resize")
        result = measureStandingRegion(subject, driver, BareOverlay::Resizing);
    else if (what == "idle")
        result = measureIdle(subject, driver);
    else if (what == "pen")
        result = measureStroke(subject, driver, kPen, BareOverlay::WholeWindow);
    else if (what == "pen-changed")
        result = measureStroke(subject, driver, kPen, BareOverlay::Stroke);
    else if (what == "mosaic")
        result = measureStroke(subject, driver, kMosaic, BareOverlay::WholeWindow);
    else if (what == "latency-drag")
        result = measureLatency(subject, driver, kNoTool, BareOverlay::Selecting, 0.5);
    else if (what == "latency-drag-95")
        result = measureLatency(subject, driver, kNoTool, BareOverlay::Selecting, 0.95);
    else if (what == "latency-pen")
        result = measureLatency(subject, driver, kPen, BareOverlay::Stroke, 0.5);
    else if (what == "latency-pen-95")
        result = measureLatency(subject, driver, kPen, BareOverlay::Stroke, 0.95);
    else if (what == "peak-memory")
        result = measurePeakMemory(subject, driver, {});
    else if (what == "peak-memory-annotated")
        result = measurePeakMemory(subject, driver, {kPen, kMosaic});
    else if (what == "strokes-memory")
        result = measureStrokesMemory(subject, driver);
    else if (what == "done")
        result = measureDone(subject, driver);
    else
        return 2;
    std::printf("%.3f\n", result);
    std::fflush(stdout);
    std::_Exit(0);
}
