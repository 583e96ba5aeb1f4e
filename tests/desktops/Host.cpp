// SPDX-License-Identifier: MIT
// A host that takes one capture and says on request where its widgets stand and what they hold:
//   desktop-host PICTURE
// It answers each line that it reads with one line. At the end it writes the picture and a last
// line: "captured", "cancelled", or why the capture failed. With the environment variable
// host_scales it asks Qt itself to follow the resolution of the screens.
#include <ScreenCaptureTool.h>
#include <ScreenCaptureWnd.h>

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QGraphicsProxyWidget>
#include <QGraphicsView>
#include <QLineEdit>
#include <QScreen>
#include <QSocketNotifier>
#include <QTextEdit>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>

#include <cstdio>
#include <iostream>
#include <string>

namespace
{

void say(const QString& line)
{
    std::cout << line.toStdString() << std::endl;
}

/// The visible widget of that object name, class or tool tip.
QWidget* findWidget(const QString& name)
{
    for (QWidget* widget : QApplication::allWidgets()) {
        const bool isMeant = widget->objectName() == name || widget->toolTip() == name ||
                             widget->inherits(name.toLatin1());
        if (isMeant && widget->isVisible())
            return widget;
    }
    return nullptr;
}

QString place(WId window, const QRect& r)
{
    return QStringLiteral("%1 %2 %3 %4 %5")
        .arg(window)
        .arg(r.x())
        .arg(r.y())
        .arg(r.width())
        .arg(r.height());
}

/// The native window, and the widget's rectangle in it, in physical pixels.
QString placeInWindow(const QWidget* widget)
{
    const QWidget* window = widget->window();
    const qreal ratio = window->screen()->devicePixelRatio();
    return place(window->windowHandle()->winId(),
                 {widget->mapTo(window, QPoint()) * ratio, widget->size() * ratio});
}

/// In a Wayland session: no window, and the widget's rectangle from the corner of all outputs, in
/// their coordinates.
QString placeOnOutputs(const QWidget* widget)
{
    const QWidget* window = widget->window();
    const QGraphicsItem* item = window->graphicsProxyWidget();
    const QPoint corner = window->screen()->virtualGeometry().topLeft();
    const QPoint origin = item ? item->scenePos().toPoint() : window->pos() - corner;
    return place(0, {origin + widget->mapTo(window, QPoint()), widget->size()});
}

QString content(QWidget* widget)
{
    if (auto* box = qobject_cast<QComboBox*>(widget))
        return box->currentText();
    if (auto* line = qobject_cast<QLineEdit*>(widget))
        return line->text();
    if (auto* text = qobject_cast<QTextEdit*>(widget))
        return text->toPlainText();
    return "nothing";
}

/// The shape that the output under the pointer shows.
Qt::CursorShape cursorShape()
{
    for (const QWidget* widget : QApplication::topLevelWidgets()) {
        const auto* view = qobject_cast<const QGraphicsView*>(widget);
        if (view && view->viewport()->underMouse())
            return view->viewport()->cursor().shape();
    }
    return Qt::BlankCursor;
}

void openDialog(bool modal)
{
    auto* dialog = new QDialog;
    dialog->setObjectName("dialog of the host");
    dialog->setWindowTitle(dialog->objectName());
    dialog->setModal(modal);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    auto* line = new QLineEdit;
    line->setObjectName("line of the dialog");
    (new QVBoxLayout(dialog))->addWidget(line);
    dialog->show();
}

/// Reads lines from standard input while the event loop runs.
class Questions : public QObject
{
public:
    Questions()
        : m_notifier(fileno(stdin), QSocketNotifier::Read)
    {
        connect(&m_notifier, &QSocketNotifier::activated, this, &Questions::answer);
    }

private:
    void answer()
    {
        std::string line;
        if (!std::getline(std::cin, line)) {
            m_notifier.setEnabled(false);
            return;
        }
        const QString question = QString::fromStdString(line);
        const QString what = question.section(' ', 1);
        if (question.startsWith("where ")) {
            const QWidget* widget = findWidget(what);
            if (!widget)
                say("nowhere");
            else if (qEnvironmentVariableIsSet("WAYLAND_DISPLAY"))
                say(placeOnOutputs(widget));
            else
                say(placeInWindow(widget));
        } else if (question.startsWith("content ")) {
            say(content(findWidget(what)));
        } else if (question.startsWith("ratio ")) {
            const QWidget* widget = findWidget(what);
            say(QString::number(widget ? widget->screen()->devicePixelRatio() : 0));
        } else if (question == "has keyboard") {
            say(QGuiApplication::focusWindow() ? "yes" : "no");
        } else if (question == "screen") {
            say(ScreenCaptureWnd::screenCaptureWnd()->screen()->name());
        } else if (question == "largest ratio") {
            say(QString::number(qApp->devicePixelRatio()));
        } else if (question == "be a window") {
            ScreenCaptureWnd::screenCaptureWnd()->showFullDesktop(false);
            say("done");
        } else if (question == "be the overlay") {
            ScreenCaptureWnd::screenCaptureWnd()->showFullDesktop(true);
            say("done");
        } else if (question == "cursor") {
            say(QString::number(cursorShape()));
        } else {
            openDialog(question == "open modal");
            say("opened");
        }
    }

    QSocketNotifier m_notifier;
};

class Receiver : public QObject
{
    Q_OBJECT

public slots:
    void onCaptured(const QImage& picture, bool finished)
    {
        if (finished)
            picture.save(QApplication::arguments().at(1));
        const QString failure = ScreenCaptureWnd::failure();
        say(finished ? "captured" : failure.isEmpty() ? "cancelled" : "failed: " + failure);
        QApplication::quit();
    }
};

} // namespace

int main(int argc, char* argv[])
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED // Qt 6 scales every host.
        if (qEnvironmentVariableIsSet("host_scales"))
            QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QT_WARNING_POP
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    ScreenCaptureTool::init(QDir::homePath());
    Receiver receiver;
    Questions questions;
    ScreenCaptureWnd* capture = ScreenCaptureWnd::screenCaptureWnd();
    capture->connectTo(&receiver, SLOT(onCaptured(QImage, bool)));
    capture->showFullDesktop(true);
    return QApplication::exec();
}

#include "Host.moc"
