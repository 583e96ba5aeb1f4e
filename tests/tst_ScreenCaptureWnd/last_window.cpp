// SPDX-License-Identifier: MIT
#include "CaptureProbe.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdio>

namespace
{

constexpr int kFailed = 1;

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

void begin(const CaptureProbe& capture)
{
    capture.window()->showFullDesktop(true);
    if (!QTest::qWaitForWindowActive(capture.window()))
        qFatal("the capture window does not become active");
    capture.drag(QPoint(20, 20), QPoint(200, 150));
}

void awaitEnd(const CaptureProbe& capture)
{
    if (!QTest::qWaitFor([&capture] { return capture.isGone(); }))
        qFatal("the capture window does not go");
}

void finish()
{
    CaptureProbe capture;
    begin(capture);
    capture.window()->accept();
    awaitEnd(capture);
}

void cancel()
{
    CaptureProbe capture;
    begin(capture);
    capture.window()->reject();
    awaitEnd(capture);
}

/// Opens the save dialog and does something there.
template <typename Action>
void inDialog(const CaptureProbe& capture, Action action)
{
    QTimer::singleShot(0, capture.window(), [&capture, action] {
        auto* dialog = capture.window()->findChild<QFileDialog*>();
        if (!QTest::qWaitForWindowExposed(dialog))
            qFatal("there is no save dialog");
        action(dialog);
    });
    capture.window()->save();
    QTest::qWait(0);
}

void save()
{
    const QTemporaryDir dir;
    const QString name = dir.filePath("saved.png");
    CaptureProbe capture;
    begin(capture);
    inDialog(capture, [name](QFileDialog* dialog) {
        dialog->findChild<QLineEdit*>()->setText(name);
        static_cast<QDialog*>(dialog)->accept();
    });
    if (!QFile::exists(name))
        qFatal("nothing was saved");
}

void cancelSaving()
{
    CaptureProbe capture;
    begin(capture);
    inDialog(capture, [](QFileDialog* dialog) { dialog->reject(); });
}

void endWhileSaving()
{
    CaptureProbe capture;
    begin(capture);
    inDialog(capture, [&capture](QFileDialog* /*dialog*/) { capture.window()->accept(); });
    awaitEnd(capture);
}

void closeOwnWindow()
{
    QWidget own;
    own.show();
    if (!QTest::qWaitForWindowExposed(&own))
        qFatal("the own window does not come up");
    own.close();
}

int failures(QuitWatch& watch, const char* what, void (*run)(), int quits)
{
    watch.count = 0;
    run();
    QTest::qWait(0);
    if (watch.count == quits)
        return 0;
    std::fprintf(stderr, "%s: the application was to quit %d times\n", what, watch.count);
    return kFailed;
}

int runAll()
{
    QuitWatch watch;
    return failures(watch, "finished", finish, 0) + failures(watch, "cancelled", cancel, 0) +
           failures(watch, "saved", save, 0) +
           failures(watch, "saving cancelled", cancelSaving, 0) +
           failures(watch, "ended while saving", endWhileSaving, 0) +
           failures(watch, "the application's own window closed", closeOwnWindow, 1);
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
