// SPDX-License-Identifier: MIT
// A host in the tray, without a window, which puts screenshots on the clipboard. A second start of
// the program asks the first for one: give that to a key of the desktop, and it works anywhere.
#include <QApplication>
#include <QClipboard>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMenu>
#include <QStandardPaths>
#include <QStyle>
#include <QSystemTrayIcon>
#include <ScreenCaptureWnd.h>

namespace
{

void takeScreenshot()
{
    ScreenCaptureWnd* capture = ScreenCaptureWnd::screenCaptureWnd();
    QObject::disconnect(capture, &ScreenCaptureWnd::captureFinished, qApp, nullptr);
    const auto copy = [](const QImage& picture, bool finished) {
        if (finished && !picture.isNull())
            QGuiApplication::clipboard()->setImage(picture);
    };
    QObject::connect(capture, &ScreenCaptureWnd::captureFinished, qApp, copy);
    capture->showFullDesktop(true);
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication app(argc, argv);
    // Windows come and go here; none of them is the last one.
    QApplication::setQuitOnLastWindowClosed(false);

    const QString name = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) +
                         QStringLiteral("/screencapture-example-tray");
    QLocalSocket first;
    first.connectToServer(name);
    if (first.waitForConnected())
        return 0;
    QLocalServer::removeServer(name);
    QLocalServer server;
    QObject::connect(&server, &QLocalServer::newConnection, qApp, [&server] {
        delete server.nextPendingConnection();
        takeScreenshot();
    });
    if (!server.listen(name))
        qWarning("There is no global start: %s", qPrintable(server.errorString()));

    QMenu menu;
    menu.addAction(QStringLiteral("Take a screenshot"), &takeScreenshot);
    menu.addAction(QStringLiteral("Quit"), qApp, &QCoreApplication::quit);
    QSystemTrayIcon icon(QApplication::style()->standardIcon(QStyle::SP_DesktopIcon));
    icon.setContextMenu(&menu);
    icon.show();
    return QApplication::exec();
}
