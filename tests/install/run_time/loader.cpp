// SPDX-License-Identifier: MIT
// A program that does not know the library when it is built: loads the one of that name, takes a
// capture, and ends with 0 when it got the picture.
#include <QApplication>
#include <QDialog>
#include <QImage>
#include <QLibrary>
#include <QMouseEvent>

class Receiver : public QObject
{
public:
    // Called through the meta-object system by the number of a slot that this class adds.
    int qt_metacall(QMetaObject::Call call, int id, void** arguments) override
    {
        id = QObject::qt_metacall(call, id, arguments);
        if (call != QMetaObject::InvokeMetaMethod || id != 0)
            return id;
        const auto& picture = *static_cast<const QImage*>(arguments[1]);
        const bool finished = *static_cast<const bool*>(arguments[2]);
        QApplication::exit(finished && picture.size() == QSize(100, 60) ? 0 : 1);
        return -1;
    }
};

static void send(QWidget* widget, QEvent::Type type, const QPoint& p)
{
    QMouseEvent event(type, p, widget->mapToGlobal(p), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QLibrary library(argv[1], 1);
    using Get = QDialog* (*)();
    using Show = void (*)(QDialog*, bool);
    const auto get = Get(library.resolve("_ZN16ScreenCaptureWnd16screenCaptureWndEv"));
    const auto show = Show(library.resolve("_ZN16ScreenCaptureWnd15showFullDesktopEb"));
    if (!get || !show)
        return 2;

    QDialog* capture = get();
    Receiver receiver;
    const int signal = capture->metaObject()->indexOfSignal("captureFinished(QImage,bool)");
    QMetaObject::connect(capture, signal, &receiver, QObject::staticMetaObject.methodCount());
    show(capture, true);
    send(capture, QEvent::MouseButtonPress, QPoint(50, 50));
    send(capture, QEvent::MouseMove, QPoint(149, 109));
    send(capture, QEvent::MouseButtonRelease, QPoint(149, 109));
    QMetaObject::invokeMethod(capture, "onBtnSend", Qt::QueuedConnection);
    return QApplication::exec();
}
