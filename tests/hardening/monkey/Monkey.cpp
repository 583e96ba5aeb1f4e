// SPDX-License-Identifier: MIT
#include "Monkey.h"

#include "ColorWidget.h"
#include "Inspection.h"
#include "PenWidthWidget.h"
#include "ResizableRect.h"
#include "Typing.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMimeData>
#include <QScreen>
#include <QSlider>
#include <QTextEdit>
#include <QTimer>
#include <QTranslator>
#include <QWheelEvent>
#include <QWindow>
#include <QtTest>
#include <numeric>

/// Whether Qt has printed a warning that is not one of the known ones.
bool hasWarned();

namespace
{

constexpr Qt::MouseButton kButtons[] = {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton,
                                        Qt::BackButton, Qt::ForwardButton};
constexpr int kBetweenClicksMs = 1000;
constexpr int kDoubleClickMs = 1;
constexpr int kFarOutsidePx = 300;
constexpr int kNearPx = 6;
constexpr int kPopupSidePx = 60;
constexpr int kBlockedMs = 100;
constexpr quint32 kSeedStep = 2654435761u;
// How many of the last events are remembered.
constexpr int kKept = 40;

QString told(QEvent::Type type, const QPoint& pos, Qt::MouseButton button)
{
    const char* const name = type == QEvent::MouseMove          ? "move"
                             : type == QEvent::MouseButtonPress ? "press"
                                                                : "release";
    return QString("%1 %2 at %3,%4").arg(name).arg(button).arg(pos.x()).arg(pos.y());
}

bool hasShortcut(const QAbstractButton& button)
{
    return !button.shortcut().isEmpty();
}

// Save, close or done.
bool isCommand(const QAbstractButton& button)
{
    return !button.isCheckable() && !hasShortcut(button);
}

/// What a host or a desktop asks of the window.
struct Request {
    int weight;
    const char* name;
    void (*make)(ScreenCaptureWnd&);
};

const Request kRequests[] = {
    {1, "accept", [](auto& w) { w.accept(); }},
    {1, "reject", [](auto& w) { w.reject(); }},
    {1, "reset", [](auto& w) { w.reset(); }},
    {1, "connect to nothing", [](auto& w) { w.connectTo(nullptr, nullptr); }},
    {4, "undo", [](auto& w) { w.undo(); }},
    {4, "redo", [](auto& w) { w.redo(); }},
    {6, "scribbled image", [](auto& w) { w.scribbledImage(); }},
    {6, "capture image", [](auto& w) { w.captureImage(); }},
    {1, "close", [](auto& w) { w.close(); }},
    {3, "hide", [](auto& w) { w.hide(); }},
    {1, "minimize", [](auto& w) { w.showMinimized(); }},
    {1, "full screen", [](auto& w) { w.showFullScreen(); }},
    {8, "show", [](auto& w) { w.showFullDesktop(true); }},
    {3, "do not show", [](auto& w) { w.showFullDesktop(false); }},
};
const Request kRequestsInDialog[] = {
    {1, "reject", [](auto& w) { w.reject(); }}, {1, "accept", [](auto& w) { w.accept(); }},
    {1, "close", [](auto& w) { w.close(); }},   {1, "reset", [](auto& w) { w.reset(); }},
    {1, "save", [](auto& w) { w.save(); }},     {1, "nothing", [](auto&) {}},
};

/// Translates everything to something longer.
class Longer : public QTranslator
{
public:
    using QTranslator::QTranslator;
    bool isEmpty() const override { return false; }
    QString translate(const char* /*context*/, const char* text, const char* /*comment*/,
                      int /*n*/) const override
    {
        return QString::fromUtf8(text) + QString::fromUtf8(text);
    }
};

} // namespace

volatile int Monkey::s_sent = 0;

template <typename List>
auto Monkey::anyOf(const List& list)
{
    return std::begin(list)[below(int(std::size(list)))];
}

template <typename List>
const auto& Monkey::weighted(const List& list)
{
    int drawn = below(std::accumulate(std::begin(list), std::end(list), 0,
                                      [](int sum, const auto& item) { return sum + item.weight; }));
    for (const auto& item : list) {
        drawn -= item.weight;
        if (drawn < 0)
            return item;
    }
    return *std::begin(list);
}

Monkey::Monkey(quint32 seed, int events)
    : m_random(seed)
    , m_seed(seed)
    , m_events(events)
{
    s_sent = 0;
    QApplication::setDoubleClickInterval(kDoubleClickMs);
    QCursor::setPos(QGuiApplication::primaryScreen()->geometry().bottomRight());
    QApplication::setPalette(QPalette());
    QApplication::setFont(QFont());
    QCoreApplication::instance()->installEventFilter(this);
    auto* rescue = new QTimer(this);
    connect(rescue, &QTimer::timeout, this, &Monkey::giveUpBlockingDrag);
    rescue->start(kBlockedMs);
    QApplication::clipboard()->setText("one\ntwo\tthree");
}

Monkey::~Monkey()
{
    delete m_window;
}

bool Monkey::isOver() const
{
    return s_sent >= m_events || !m_complaint.isEmpty();
}

void Monkey::play()
{
    beginCapture();
    while (!isOver())
        act();
}

// Each action has a seed of its own, so that one which the server makes a little different does not
// make all that follow different.
void Monkey::act()
{
    m_random.seed(m_seed + quint32(++m_actions) * kSeedStep);
    static const Action kActions[] = {
        {60, &Monkey::drag},
        {25, &Monkey::wander},
        {25, &Monkey::strikeKey},
        {15, &Monkey::pressOrRelease},
        {10, &Monkey::pickWidth},
        {6, &Monkey::turnWheel},
        {5, &Monkey::rebuildMosaic},
        {5, &Monkey::askAsHost},
        {2, &Monkey::changeFocus},
        {2, &Monkey::resize},
        {1, &Monkey::doubleClick},
        {1, &Monkey::changeWorld},
        {10, [](Monkey& m) { m.dragAlong(m.anyOf(m.m_window->findChildren<QSlider*>())); }},
        {10, [](Monkey& m) { m.clickOn(m.m_window->findChild<ColorWidget*>()); }},
        {6, [](Monkey& m) { m.clickOn(m.m_window->findChild<QComboBox*>()); }},
        {30, [](Monkey& m) { m.clickAny([](auto& button) { return button.isCheckable(); }); }},
        {15, [](Monkey& m) { m.clickAny([](auto& button) { return hasShortcut(button); }); }},
        {3, [](Monkey& m) { m.clickAny([](auto& button) { return isCommand(button); }); }},
    };
    if (!m_window)
        beginCapture();
    else if (ScreenCaptureWndAccess::isIdle(*m_window) && !once(3))
        drag();
    else
        weighted(kActions).play(*this);
    if (once(3))
        releaseAll();
    settle();
}

// Everything that reaches the window goes through here.
void Monkey::send(const QString& what, const std::function<void()>& event)
{
    if (isOver() || !m_window)
        return;
    s_sent = s_sent + 1;
    m_sending.start();
    ++m_depth;
    event();
    --m_depth;
    inspect();
    keep(what);
    // What comes of it on the server is known before anything else is done.
    if (m_depth == 0 && once(3))
        meetServer();
}

void Monkey::keep(const QString& what)
{
    if (m_last.size() == kKept)
        m_last.removeFirst();
    m_last << QString("%1: %2; %3")
                  .arg(s_sent)
                  .arg(what, m_window ? ScreenCaptureWndAccess::summary(*m_window) : "no window");
}

// Qt reads what the server says in a thread of its own, which may lag behind the answer that a
// single meeting waits for.
void Monkey::meetServer()
{
    for (int i = 0; i < 3; ++i)
        QGuiApplication::sync();
}

void Monkey::inspect()
{
    if (!m_complaint.isEmpty())
        return;
    if (m_signals > 1)
        m_complaint = "the signal came more than once";
    else if (hasWarned())
        m_complaint = "Qt warned";
    else if (m_window)
        m_complaint = ScreenCaptureWndAccess::complaint(*m_window);
    else if (ScreenCaptureWndAccess::exists())
        m_complaint = "the one window is gone and still there";
    else if (m_captures > 0 && m_signals == 0)
        m_complaint = "the window is gone without a signal";
}

// A canvas that was pressed has been asked by now. One that commits because the host asks for the
// picture is asked when it is pressed next.
void Monkey::inspectRedo()
{
    if (!m_window || m_signals > 0 || !m_complaint.isEmpty())
        return;
    if (ScreenCaptureWndAccess::offersRedoInVain(*m_window))
        m_complaint = "redo is offered and there is nothing to redo";
}

void Monkey::settle()
{
    meetServer();
    inspectRedo();
    if (m_signals > 0 && !once(4))
        buryWindow();
    inspect();
}

void Monkey::buryWindow()
{
    meetServer();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (m_window && m_complaint.isEmpty())
        m_complaint = "the window outlives its capture";
}

void Monkey::beginCapture()
{
    meetServer();
    m_window = ScreenCaptureWnd::screenCaptureWnd();
    m_held = {};
    m_signals = 0;
    m_mayDeliver = true;
    ++m_captures;
    connect(m_window, &ScreenCaptureWnd::captureFinished, this, &Monkey::onFinished);
    m_window->connectTo(this, SLOT(onCaptured(QImage, bool)));
    m_window->showFullDesktop(true);
    send("begin", [this] { meetServer(); });
}

void Monkey::onFinished(const QImage& picture, bool finished)
{
    ++m_signals;
    const auto* region = m_window->findChild<ResizableRect*>();
    const bool hasPicture = finished && region->isVisible() && !region->rect().isEmpty();
    const QSize expected = hasPicture ? region->rect().size() : QSize(0, 0);
    if (m_complaint.isEmpty() && picture.size() != expected)
        m_complaint = QString("a picture of %1 x %2 for a region of %3 x %4")
                          .arg(picture.width())
                          .arg(picture.height())
                          .arg(expected.width())
                          .arg(expected.height());
}

void Monkey::onCaptured(const QImage& picture, bool finished)
{
    ++m_deliveries;
    if (!m_mayDeliver)
        m_complaint = "a result was delivered twice";
    if (!finished && !picture.isNull())
        m_complaint = "a cancelled capture delivered a picture";
    m_mayDeliver = false;
}

// Text that is dragged waits for the mouse in a loop of its own.
void Monkey::giveUpBlockingDrag()
{
    if (m_depth == 0 || m_sending.elapsed() < kBlockedMs || QApplication::activeModalWidget())
        return;
    QWindow* window = m_window ? m_window->windowHandle() : nullptr;
    if (!window)
        return;
    qt_handleKeyEvent(window, QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    qt_handleKeyEvent(window, QEvent::KeyRelease, Qt::Key_Escape, Qt::NoModifier);
}

QPoint Monkey::nearRegion()
{
    const QRect r = m_window->findChild<ResizableRect*>()->rect();
    const int xs[] = {r.left(), r.center().x(), r.right()};
    const int ys[] = {r.top(), r.center().y(), r.bottom()};
    return QPoint(anyOf(xs), anyOf(ys)) +
           QPoint(between(-kNearPx, kNearPx), between(-kNearPx, kNearPx));
}

QPoint Monkey::somewhere()
{
    const QSize size = m_window->size();
    const int kind = below(10);
    if (kind == 0)
        return {between(-kFarOutsidePx, size.width() + kFarOutsidePx),
                between(-kFarOutsidePx, size.height() + kFarOutsidePx)};
    if (kind <= 2)
        return nearRegion();
    const QRect region = m_window->findChild<ResizableRect*>()->rect();
    if (kind <= 6 && !region.isEmpty())
        return {between(region.left(), region.right()), between(region.top(), region.bottom())};
    return {below(size.width() + 1), below(size.height() + 1)};
}

// An open list of font sizes takes most of what is done to the window.
QWidget* Monkey::target()
{
    QWidget* popup = QApplication::activePopupWidget();
    return popup ? popup : m_window.data();
}

// What is drawn does not depend on what the server has done by now, so that a seed says it all.
void Monkey::mouse(QEvent::Type type, const QPoint& pos, Qt::MouseButton button)
{
    const bool onPopup = once(2);
    const bool shift = once(20);
    const QPoint drawn(below(kPopupSidePx), below(kPopupSidePx));
    send(told(type, pos, button), [&] {
        QWidget* popup = QApplication::activePopupWidget();
        QWidget* receiver = popup && onPopup ? popup : m_window.data();
        const QPoint local = popup == receiver ? drawn : pos;
        if (receiver->windowHandle())
            qt_handleMouseEvent(receiver->windowHandle(), local, receiver->mapToGlobal(local),
                                m_held, button, type, shift ? Qt::ShiftModifier : Qt::NoModifier,
                                m_timestamp);
    });
    m_pos = pos;
}

void Monkey::moveTo(const QPoint& pos)
{
    if (m_window)
        mouse(QEvent::MouseMove, pos);
}

void Monkey::press(Qt::MouseButton button)
{
    if (!m_window || m_held.testFlag(button))
        return;
    m_held |= button;
    mouse(QEvent::MouseButtonPress, m_pos, button);
}

void Monkey::release(Qt::MouseButton button)
{
    if (!m_window || !m_held.testFlag(button))
        return;
    m_held &= ~int(button);
    mouse(QEvent::MouseButtonRelease, m_pos, button);
    m_timestamp += kBetweenClicksMs;
}

void Monkey::releaseAll()
{
    for (const Qt::MouseButton button : kButtons)
        release(button);
}

// What comes in between while something else is being done.
void Monkey::interfere()
{
    static const Action kInterferences[] = {
        {6, &Monkey::strikeKey},   {4, &Monkey::pressOrRelease}, {2, &Monkey::turnWheel},
        {2, &Monkey::askAsHost},   {1, &Monkey::changeWorld},    {1, &Monkey::resize},
        {1, &Monkey::changeFocus}, {1, &Monkey::rebuildMosaic},
    };
    if (m_window && once(60))
        weighted(kInterferences).play(*this);
}

void Monkey::clickAt(QWidget* widget, const QPoint& pos)
{
    moveTo(widget->mapTo(m_window, pos));
    interfere();
    press(Qt::LeftButton);
    interfere();
    release(Qt::LeftButton);
}

void Monkey::clickOn(QWidget* widget)
{
    const bool alsoHidden = once(20);
    const QPoint pos(below(widget->width()), below(widget->height()));
    if (widget->isVisible() || alsoHidden)
        clickAt(widget, pos);
}

void Monkey::dragAlong(QWidget* widget)
{
    if (!widget || !widget->isVisible())
        return;
    moveTo(widget->mapTo(m_window, QPoint(below(widget->width()), below(widget->height()))));
    press(Qt::LeftButton);
    for (int i = below(4); i >= 0 && m_window; --i) {
        moveTo(m_pos + QPoint(between(-40, 40), between(-8, 8)));
        interfere();
    }
    release(Qt::LeftButton);
}

void Monkey::drag()
{
    const Qt::MouseButton button = once(20) ? anyOf(kButtons) : Qt::LeftButton;
    moveTo(somewhere());
    press(button);
    for (int i = below(6); i >= 0 && m_window; --i) {
        const bool near = once(2);
        moveTo(near ? m_pos + QPoint(between(-kNearPx, kNearPx), between(-kNearPx, kNearPx))
                    : somewhere());
        interfere();
    }
    if (!once(20))
        release(button);
}

void Monkey::wander()
{
    for (int i = below(5); i >= 0 && m_window; --i)
        moveTo(somewhere());
}

void Monkey::pressOrRelease()
{
    const Qt::MouseButton button = anyOf(kButtons);
    if (m_held.testFlag(button))
        release(button);
    else
        press(button);
}

void Monkey::clickAny(bool (*wanted)(const QAbstractButton& button))
{
    QList<QAbstractButton*> buttons;
    for (QAbstractButton* button : m_window->findChildren<QAbstractButton*>()) {
        if (wanted(*button))
            buttons << button;
    }
    if (!buttons.isEmpty())
        clickOn(anyOf(buttons));
}

void Monkey::pickWidth()
{
    auto* picker = m_window->findChild<PenWidthWidget*>();
    if (once(2))
        clickOn(picker);
    else
        dragAlong(picker->findChild<QSlider*>());
}

void Monkey::strikeKey()
{
    const Keystroke& stroke = weighted(kKeystrokes);
    const bool toFocus = !once(10);
    const bool repeated = once(10);
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        send(QString("key %1 %2").arg(type).arg(stroke.key, 0, 16), [&] {
            QWindow* window = QGuiApplication::focusWindow();
            if (!window || !toFocus)
                window = target()->windowHandle();
            if (window)
                qt_handleKeyEvent(window, type, stroke.key, stroke.modifiers,
                                  QString::fromLatin1(stroke.text), repeated);
        });
    }
}

void Monkey::turnWheel()
{
    send("wheel", [this] {
        QWidget* receiver = m_window->childAt(m_pos);
        if (!receiver)
            receiver = m_window;
        const QPointF local = receiver->mapFrom(m_window, m_pos);
        const QPoint angle(0, between(-3, 3) * 120);
        QWheelEvent event(local, m_window->mapToGlobal(m_pos), QPoint(), angle, m_held,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(receiver, &event);
    });
}

void Monkey::doubleClick()
{
    const Qt::MouseButton button = anyOf(kButtons);
    moveTo(somewhere());
    press(button);
    release(button);
    m_timestamp -= kBetweenClicksMs;
    press(button);
    if (!once(4))
        release(button);
}

void Monkey::askAsHost()
{
    const Request& request = weighted(kRequests);
    send(request.name, [&] { request.make(*m_window); });
}

void Monkey::changeWorld()
{
    const int change = below(3);
    send(QString("world %1").arg(change), [this, change] {
        if (change == 0)
            changeLanguage();
        else if (change == 1)
            QApplication::setPalette(QPalette(QColor::fromRgb(m_random.generate())));
        else
            QApplication::setFont(QFont(once(2) ? "DejaVu Sans" : "DejaVu Serif", between(5, 24)));
    });
}

void Monkey::changeLanguage()
{
    if (m_longer)
        delete m_longer;
    else
        QCoreApplication::installTranslator(m_longer = new Longer(this));
}

void Monkey::changeFocus()
{
    send("focus", [this] {
        const QList<QWidget*> widgets = m_window->findChildren<QWidget*>();
        switch (below(3)) {
        case 0:
            return QApplication::setActiveWindow(nullptr);
        case 1:
            return QApplication::setActiveWindow(m_window);
        default:
            return anyOf(widgets)->setFocus();
        }
    });
}

void Monkey::resize()
{
    send("resize", [this] {
        if (once(3))
            m_window->setGeometry(QGuiApplication::primaryScreen()->virtualGeometry());
        else
            m_window->setGeometry(between(-50, 200), between(-50, 200), below(800), below(600));
    });
}

// What the canvas's timer does, at a moment that the seed decides.
void Monkey::rebuildMosaic()
{
    auto* canvas = m_window->findChild<ScribbleArea*>();
    if (canvas)
        send("rebuild", [canvas] { QMetaObject::invokeMethod(canvas, "onupdateMosaicImage"); });
}

bool Monkey::eventFilter(QObject* watched, QEvent* event)
{
    auto* dialog = qobject_cast<QFileDialog*>(watched);
    if (dialog && event->type() == QEvent::Show) {
        ++m_dialogs;
        const QPointer<QFileDialog> shown(dialog);
        QMetaObject::invokeMethod(
            this, [this, shown] { answer(shown); }, Qt::QueuedConnection);
    }
    return false;
}

// Nobody answers twice, so whatever was done, the dialog is closed at the end.
void Monkey::answer(QFileDialog* dialog)
{
    if (!dialog)
        return;
    const QPointer<QDialog> open(dialog);
    const char* const suffixes[] = {".png", ".jpg", ".bmp", "", ".xyz"};
    const QString name = m_directory.filePath(QString::number(below(20)) + anyOf(suffixes));
    if (once(4)) {
        dialog->findChild<QLineEdit*>()->setText(name);
        open->done(QDialog::Accepted);
    } else {
        const Request& request = anyOf(kRequestsInDialog);
        send(QString("in the dialog: ") + request.name, [&] { request.make(*m_window); });
    }
    if (open)
        open->reject();
}
