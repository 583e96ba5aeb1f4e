// SPDX-License-Identifier: MIT
#include "ScreenCaptureWnd.h"

#include <QApplication>
#include <QPointer>
#include <QTimer>
#include <cstdio>

namespace
{

int s_messages = 0;

void countMessages(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text)
{
    // Qt prints this about the style sheet with the stray closing brace, which stays as it stands.
    if (text.startsWith("Could not parse stylesheet of object MagnifierWidget"))
        return;
    std::fprintf(stderr, "%s\n", qPrintable(text));
    ++s_messages;
}

} // namespace

/// An application that ends in the middle of a capture: nothing is printed, nothing crashes, and
/// the window goes while the application still stands.
int main(int argc, char** argv)
{
    qInstallMessageHandler(countMessages);
    int status = 0;
    {
        QApplication app(argc, argv);
        s_messages = 0;
        QPointer<ScreenCaptureWnd> window = ScreenCaptureWnd::screenCaptureWnd();
        window->showFullDesktop(true);
        QTimer::singleShot(0, &app, &QCoreApplication::quit);
        status = QApplication::exec();
        if (window)
            ++s_messages;
    }
    return status + s_messages;
}
