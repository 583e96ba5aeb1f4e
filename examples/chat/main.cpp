// SPDX-License-Identifier: MIT
// A window like that of a chat: a screenshot goes into the text that is being written.
#include <QApplication>
#include <QPushButton>
#include <QTextEdit>
#include <QTimer>
#include <QVBoxLayout>
#include <ScreenCaptureWnd.h>

namespace
{

// So long compositors and window managers take to put a window away.
constexpr int kOutOfTheWayMs = 300;

void capture(QWidget* window, QTextEdit* editor)
{
    ScreenCaptureWnd* capture = ScreenCaptureWnd::screenCaptureWnd();
    const auto insert = [window, editor](const QImage& picture, bool finished) {
        if (finished && !picture.isNull())
            editor->textCursor().insertImage(picture);
        window->show();
        editor->setFocus();
    };
    QObject::connect(capture, &ScreenCaptureWnd::captureFinished, editor, insert,
                     Qt::QueuedConnection);
    capture->showFullDesktop(true);
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication app(argc, argv);
    QWidget window;
    window.setWindowTitle(QStringLiteral("Chat"));
    auto* editor = new QTextEdit;
    auto* button = new QPushButton(QStringLiteral("Screenshot"));
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(editor);
    layout->addWidget(button);

    // Out of the picture, then the picture.
    QObject::connect(button, &QPushButton::clicked, &window, [&window, editor] {
        window.hide();
        QTimer::singleShot(kOutOfTheWayMs, &window,
                           [&window, editor] { capture(&window, editor); });
    });
    window.show();
    return QApplication::exec();
}
