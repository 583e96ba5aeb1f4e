// SPDX-License-Identifier: MIT
#include "OutputViews.h"

#include "OverlayGeometry.h"
#include "OverlayKeeper.h"
#include "QtVersions.h"

#include <QApplication>
#include <QCursor>
#include <QGraphicsProxyWidget>
#include <QGraphicsView>
#include <QInputMethod>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QScreen>
#include <QTransform>
#include <QWindow>
#include <QtMath>

#include <algorithm>

namespace
{

/// Where the coordinates of the window begin on the desktop.
QPoint corner()
{
    return QGuiApplication::primaryScreen()->virtualGeometry().topLeft();
}

/// The part of the scene that one output shows.
class OutputView : public QGraphicsView
{
public:
    OutputView(QGraphicsScene* scene, QWidget* window, QScreen* screen, const QRect& part,
               bool& handsOn)
        : QGraphicsView(scene)
        , m_window(window)
        , m_handsOn(handsOn)
    {
        setWindowFlag(Qt::FramelessWindowHint);
        setAttribute(Qt::WA_QuitOnClose, false);
        setFrameShape(NoFrame);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setAlignment(Qt::AlignLeft | Qt::AlignTop);
        setBackgroundBrush(Qt::black);
        setSceneRect(part);
        setGeometry(screen->geometry());
        create();
        windowHandle()->setScreen(screen);
        setWindowState(Qt::WindowFullScreen);
    }

protected:
    // A pointer that enters may rest there without a move.
    bool viewportEvent(QEvent* event) override
    {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove: {
            const auto& mouse = *static_cast<QMouseEvent*>(event);
            return passOn(event->type(), mouse, mouse.button(), mouse.buttons(), mouse.timestamp());
        }
        case QEvent::Enter:
            return passOn(QEvent::MouseMove, *static_cast<QEnterEvent*>(event), Qt::NoButton,
                          QGuiApplication::mouseButtons());
        default:
            return QGraphicsView::viewportEvent(event);
        }
    }

    // The view's answer has the offset of the focused widget already, which Qt would add again.
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override
    {
        QGuiApplication::inputMethod()->setInputItemTransform(QTransform());
        return QGraphicsView::inputMethodQuery(query);
    }

    void closeEvent(QCloseEvent* event) override
    {
        QGraphicsView::closeEvent(event);
        if (m_window)
            m_window->close();
    }

private:
    // The view would round to the coordinates beside those under the pointer.
    template <typename PointerEvent>
    bool passOn(QEvent::Type type, const PointerEvent& event, Qt::MouseButton button,
                Qt::MouseButtons buttons, ulong timestamp = 0)
    {
        const QPointF pos = qtversions::posInWindow(event);
        QMouseEvent whole(type, QPointF(qFloor(pos.x()), qFloor(pos.y())),
                          qtversions::posOnDesktop(event), button, buttons,
                          QGuiApplication::keyboardModifiers());
        // Qt 6 finds double clicks by it.
        whole.setTimestamp(timestamp);
        const QScopedValueRollback<bool> handing(m_handsOn, true);
        return QGraphicsView::viewportEvent(&whole);
    }

    QPointer<QWidget> m_window;
    bool& m_handsOn;
};

} // namespace

OutputViews::OutputViews(QWidget* window)
{
    m_scene.setSceneRect(QRect(QPoint(), QGuiApplication::primaryScreen()->virtualSize()));
    window->setGeometry(m_scene.sceneRect().toRect());
    // A window that has been neither shown nor hidden is shown by the scene.
    window->hide();
    m_proxy = m_scene.addWidget(window);
    const QList<QScreen*> screens = QGuiApplication::screens();
    for (QScreen* screen : screens)
        m_views.push_back(std::make_unique<OutputView>(
            &m_scene, window, screen, screen->geometry().translated(-corner()), m_handsOn));
    connect(&m_scene, &QGraphicsScene::focusItemChanged, this, &OutputViews::takeFocusBack,
            Qt::QueuedConnection);
    qApp->installEventFilter(this);
}

OutputViews::~OutputViews() = default;

void OutputViews::show()
{
    for (const auto& view : m_views)
        view->show();
    m_scene.setActiveWindow(m_proxy);
    m_proxy->widget()->setFocus();
}

void OutputViews::hide()
{
    for (auto dialog = m_dialogs.cbegin(); dialog != m_dialogs.cend(); ++dialog)
        dialog.key()->setTransientParent(dialog.value());
    m_dialogs.clear();
    for (const auto& view : m_views)
        view->hide();
}

void OutputViews::letGo()
{
    qApp->removeEventFilter(this);
    hide();
    m_proxy->setWidget(nullptr);
    deleteLater();
}

QVector<QRect> OutputViews::outputs()
{
    QVector<QRect> outputs;
    for (const QScreen* screen : QGuiApplication::screens())
        outputs << screen->geometry().translated(-corner());
    return outputs;
}

QPoint OutputViews::cursorPos()
{
    return QCursor::pos() - corner();
}

// Tool tips are not: Qt shows them natively.
bool OutputViews::isInScene(const QObject* object) const
{
    const auto* widget = qobject_cast<const QWidget*>(object);
    const QGraphicsItem* item = widget ? widget->graphicsProxyWidget() : nullptr;
    return item && item != m_proxy && item->scene() == &m_scene;
}

bool OutputViews::eventFilter(QObject* watched, QEvent* event)
{
    auto* window = qobject_cast<QWindow*>(watched);
    if (event->type() == QEvent::Show && isInScene(watched))
        place(static_cast<QWidget*>(watched));
    else if (event->type() == QEvent::Show && OverlayKeeper::isDialog(window))
        showAbove(window);
    else if (event->type() == QEvent::Hide && m_dialogs.contains(window))
        window->setTransientParent(m_dialogs.take(window));
    else if (event->type() == QEvent::CursorChange && watched == underCursor())
        m_proxy->setCursor(underCursor()->cursor());
    return QObject::eventFilter(watched, event);
}

// Qt bounds what the window opens by no output, and shows a file dialog outside of the scene. It
// places both on the desktop.
void OutputViews::place(QWidget* opened)
{
    opened->setAttribute(Qt::WA_DontShowOnScreen);
    const QRect place = opened->geometry().translated(-corner());
    const QRect output = overlay::nearestScreen(place.center(), outputs());
    opened->move(overlay::posWithin(output, place) + corner());
}

// A compositor shows nothing above a full-screen surface but what belongs to it.
void OutputViews::showAbove(QWindow* dialog)
{
    const auto active = std::find_if(m_views.begin(), m_views.end(),
                                     [](const auto& view) { return view->isActiveWindow(); });
    const auto& view = active == m_views.end() ? m_views.front() : *active;
    m_dialogs.insert(dialog, dialog->transientParent());
    dialog->setTransientParent(view->windowHandle());
}

// Qt follows the cursor of a widget in a scene when the pointer enters it, and not later.
const QWidget* OutputViews::underCursor() const
{
    const QWidget* child = m_proxy->widget()->childAt(cursorPos());
    return child ? child : m_proxy->widget();
}

// After a list or a dialog has closed, no item has the focus. The key that closed a list goes
// nowhere.
void OutputViews::takeFocusBack()
{
    if (!m_scene.focusItem())
        m_proxy->setFocus();
}
