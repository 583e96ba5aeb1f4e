// SPDX-License-Identifier: MIT
#include "CaptureProbe.h"

#include <QTemporaryDir>
#include <cstdio>

namespace
{

/// Sees when Qt would end the application, and keeps it from that.
class QuitWatch : public QObject
{
public:
    QuitWatch() { qApp->installEventFilter(this); }
    int count = 0;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched != qApp || event->type() != QEvent::Quit)
            return false;
        ++count;
        return true;
    }
};

using Use = std::function<void(const CaptureProbe& capture)>;

/// A capture with a region, used and ended.
void capture(const Use& use)
{
    CaptureProbe capture;
    capture.window()->showFullDesktop(true);
    if (!QTest::qWaitForWindowActive(capture.window()))
        qFatal("the capture window does not become active");
    capture.drag(QPoint(20, 20), QPoint(200, 150));
    use(capture);
    QTest::qWait(0);
}

void awaitEnd(const CaptureProbe& capture)
{
    if (!QTest::qWaitFor([&capture] { return capture.isGone(); }))
        qFatal("the capture window does not go");
}

void save(const CaptureProbe& capture)
{
    const QTemporaryDir dir;
    capture.saveAs(dir.filePath("saved.png"));
    if (!QFile::exists(dir.filePath("saved.png")))
        qFatal("nothing was saved");
}

void endWhileSaving(const CaptureProbe& capture)
{
    whileSaving([&capture](QFileDialog& dialog) {
        if (!QTest::qWaitForWindowExposed(&dialog))
            qFatal("the save dialog does not come up");
        capture.window()->accept();
    });
    capture.window()->save();
    awaitEnd(capture);
}

void end(const CaptureProbe& capture, void (ScreenCaptureWnd::*how)())
{
    (capture.window()->*how)();
    awaitEnd(capture);
}

void closeOwnWindow()
{
    QWidget own;
    own.show();
    if (!QTest::qWaitForWindowExposed(&own))
        qFatal("the own window does not come up");
    own.close();
    QTest::qWait(0);
}

/// How often Qt would have quit during all captures, and then for the application's own window.
int runAll()
{
    QuitWatch watch;
    capture([](const CaptureProbe& c) { end(c, &ScreenCaptureWnd::accept); });
    capture([](const CaptureProbe& c) { end(c, &ScreenCaptureWnd::reject); });
    capture(save);
    capture([](const CaptureProbe& c) { c.saveAs(QString()); });
    capture(endWhileSaving);
    const int duringCaptures = watch.count;
    closeOwnWindow();
    if (duringCaptures == 0 && watch.count == 1)
        return 0;
    std::fprintf(stderr,
                 "the application was to quit %d times during the captures, %d times after\n",
                 duringCaptures, watch.count - duringCaptures);
    return 1;
}

} // namespace

/// An application without windows that does not guard itself: neither the end of a capture nor that
/// of the save dialog is taken for the end of the last window.
int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    Q_ASSERT(QGuiApplication::quitOnLastWindowClosed());
    QTimer::singleShot(0, &app, [] { QCoreApplication::exit(runAll()); });
    return QApplication::exec();
}
