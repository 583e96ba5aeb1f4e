// SPDX-License-Identifier: MIT
#include "Mouse.h"

#include <QApplication>
#include <QDialog>
#include <QImage>
#include <QPushButton>
#include <QTemporaryDir>
#include <cstdio>
#include <dlfcn.h>

namespace
{

constexpr int kRounds = 5;

struct Failure {
    const char* what;
};

void require(bool condition, const char* what)
{
    if (!condition)
        throw Failure{what};
}

template <typename Function>
Function symbol(void* library, const char* name)
{
    void* const address = dlsym(library, name);
    require(address, name);
    return reinterpret_cast<Function>(address);
}

/// A whole capture with every tool, and colours that are stored.
void takeCapture(void* library, const QString& settings)
{
    const auto init =
        symbol<void (*)(const QString&)>(library, "_ZN17ScreenCaptureTool4initERK7QString");
    const auto get = symbol<QDialog* (*)()>(library, "_ZN16ScreenCaptureWnd16screenCaptureWndEv");
    const auto show =
        symbol<void (*)(QDialog*, bool)>(library, "_ZN16ScreenCaptureWnd15showFullDesktopEb");

    init(settings);
    const QPointer<QDialog> capture = get();
    show(capture, true);
    Mouse(capture).drag(QPoint(50, 50), QPoint(349, 249));
    const auto buttons = capture->findChild<QWidget*>("mainToolBar")->findChildren<QPushButton*>();
    for (QPushButton* button : buttons) {
        if (!button->isCheckable())
            continue;
        button->click();
        for (QObject* child : capture->children()) {
            if (child->inherits("ScribbleArea"))
                Mouse(static_cast<QWidget*>(child)).drag(QPoint(20, 20), QPoint(90, 70));
        }
        require(QMetaObject::invokeMethod(capture, "onPenColorChanged", Q_ARG(QColor, Qt::green)),
                "colour");
    }
    QCoreApplication::processEvents();
    require(QMetaObject::invokeMethod(capture, "onBtnSend"), "done");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    require(capture.isNull(), "the window is gone");
}

} // namespace

/// An application that loads the library anew for each capture. Ends with 0 when every capture went
/// through and, where the system takes a library out of memory at all, it was out each time.
int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    const QTemporaryDir settings;
    const QByteArray file = app.arguments().value(1).toLocal8Bit();
    try {
        for (int round = 0; round < kRounds; ++round) {
            void* const library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
            require(library, "loaded");
            takeCapture(library, settings.path());
            require(dlclose(library) == 0, "closed");
            require(!dlopen(file, RTLD_NOW | RTLD_NOLOAD), "unloaded");
            QCoreApplication::processEvents();
        }
    } catch (const Failure& failure) {
        std::fprintf(stderr, "not so: %s\n", failure.what);
        return 1;
    }
    return 0;
}
