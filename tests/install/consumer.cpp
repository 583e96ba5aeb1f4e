// SPDX-License-Identifier: MIT
// A program that knows the library by its public headers alone: takes a capture and ends with 0
// when it got the picture.
#include <QApplication>
#include <QMouseEvent>
#include <QPixmap>
#include <QVersionNumber>
#include <ScreenCaptureTool.h>
#include <ScreenCaptureWnd.h>
#include <code_convert.h>
#include <myfs.h>
#include <screencapture_version.h>

static void send(QWidget* widget, QEvent::Type type, const QPoint& p)
{
    QMouseEvent event(type, p, widget->mapToGlobal(p), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

// The version as a text and as a number.
static bool isOneVersion()
{
    const auto version = QVersionNumber::fromString(SCREENCAPTURE_VERSION_STR);
    return SCREENCAPTURE_VERSION ==
           QT_VERSION_CHECK(version.majorVersion(), version.minorVersion(), version.microVersion());
}

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    myfs::path settings(".");
    settings.append("settings");
    if (!myfs::create_directory_r(settings) || CodeCvt::utf8_to_utf16("ab").size() != 2 ||
        !isOneVersion())
        return 2;
    ScreenCaptureTool::init(QString::fromStdString(settings.string()));

    ScreenCaptureWnd* capture = ScreenCaptureWnd::screenCaptureWnd();
    if (QPixmap(":/scribble/pen.png").isNull())
        return 3;
    QObject::connect(capture, &ScreenCaptureWnd::captureFinished, &app,
                     [](const QImage& picture, bool finished) {
                         const bool good = finished && picture.size() == QSize(100, 60);
                         QApplication::exit(good ? 0 : 1);
                     });
    capture->showFullDesktop(true);
    send(capture, QEvent::MouseButtonPress, QPoint(50, 50));
    send(capture, QEvent::MouseMove, QPoint(149, 109));
    send(capture, QEvent::MouseButtonRelease, QPoint(149, 109));
    QMetaObject::invokeMethod(capture, "onBtnSend", Qt::QueuedConnection);
    return QApplication::exec();
}
