// SPDX-License-Identifier: MIT
#include <ScreenCaptureWnd.h>

#include <QApplication>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    ScreenCaptureWnd* capture = ScreenCaptureWnd::screenCaptureWnd();
    QObject::connect(capture, &ScreenCaptureWnd::captureFinished, &app,
                     [](const QImage& /*image*/, bool finished) { QApplication::exit(finished); });
    capture->showFullDesktop(true);
    QMetaObject::invokeMethod(capture, "reject", Qt::QueuedConnection);
    return QApplication::exec();
}
