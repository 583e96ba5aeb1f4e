// SPDX-License-Identifier: MIT
// The smallest host: takes one capture, shows the picture, and ends when that is closed.
#include <QApplication>
#include <QLabel>
#include <ScreenCaptureWnd.h>

int main(int argc, char** argv)
{
    const QApplication app(argc, argv);
    QLabel view;

    ScreenCaptureWnd* capture = ScreenCaptureWnd::screenCaptureWnd();
    const auto show = [&view](const QImage& picture, bool finished) {
        if (!finished || picture.isNull())
            return QCoreApplication::quit();
        view.setPixmap(QPixmap::fromImage(picture));
        view.show();
    };
    QObject::connect(capture, &ScreenCaptureWnd::captureFinished, &view, show,
                     Qt::QueuedConnection);
    capture->showFullDesktop(true);
    return QApplication::exec();
}
