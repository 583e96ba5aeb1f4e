// SPDX-License-Identifier: MIT
// A host in the tray, which shows the last screenshot in a window. A second start of the program
// asks the first for one: give that to a key of the desktop, and it works anywhere.
#include <QApplication>
#include <QLabel>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMenu>
#include <QStandardPaths>
#include <QStyle>
#include <QSystemTrayIcon>
#include <ScreenCaptureWnd.h>

static void takeScreenshot(QLabel* view)
{
    ScreenCaptureWnd* capture = ScreenCaptureWnd::screenCaptureWnd();
    const auto show = [view](const QImage& picture, bool finished) {
        if (!finished || picture.isNull())
            return;
        view->setPixmap(QPixmap::fromImage(picture));
        view->adjustSize();
        view->show();
    };
    QObject::connect(capture, &ScreenCaptureWnd::captureFinished, view, show, Qt::QueuedConnection);
    capture->showFullDesktop(true);
}

int main(int argc, char** argv)
{
    const QApplication app(argc, argv);
    // The picture is closed, the host stays.
    QApplication::setQuitOnLastWindowClosed(false);

    QLabel view;

    const QString name = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) +
                         QStringLiteral("/screencapture-example-tray");
    QLocalSocket first;
    first.connectToServer(name);
    if (first.waitForConnected())
        return 0;
    QLocalServer server;
    QObject::connect(&server, &QLocalServer::newConnection, &view, [&server, &view] {
        delete server.nextPendingConnection();
        takeScreenshot(&view);
    });
    QLocalServer::removeServer(name); // one that a crash left
    server.listen(name);

    QMenu menu;
    menu.addAction(QStringLiteral("Take a screenshot"), [&view] { takeScreenshot(&view); });
    menu.addAction(QStringLiteral("Quit"), qApp, &QCoreApplication::quit);
    QSystemTrayIcon icon(QApplication::style()->standardIcon(QStyle::SP_DesktopIcon));
    icon.setContextMenu(&menu);
    icon.show();
    return QApplication::exec();
}
