// SPDX-License-Identifier: MIT
#pragma once

#include "Access.h"
#include "BehaviourTest.h"
#include "ColorWidget.h"
#include "MagnifierWidget.h"
#include "Mouse.h"
#include "PenWidthWidget.h"
#include "ResizableRect.h"

#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTextEdit>
#include <QTimer>
#include <functional>
#include <memory>

/// A host's receiver: counts the results and keeps the last one.
class Receiver : public QObject
{
    Q_OBJECT

public:
    int count = 0;
    QImage image;
    bool finished = false;
    /// What the host does when the result arrives.
    std::function<void()> then;

public slots:
    void onCaptured(const QImage& picture, bool done)
    {
        ++count;
        image = picture;
        finished = done;
        if (then)
            then();
    }
};

/// The places in the main tool bar, left to right.
enum MainItem {
    Scribble,
    Text,
    Arrow,
    Rectangle,
    Ellipse,
    Mosaic,
    FirstSeparator,
    Undo,
    Redo,
    Save,
    SecondSeparator,
    Close,
    Done,
    MainItemCount
};
Q_DECLARE_METATYPE(MainItem)

/// The places in the sub tool bar, left to right.
enum SubItem { FontLabel, FontBox, WidthPicker, SubSeparator, BlurPanel, Palette, SubItemCount };

using Tools = QList<MainItem>;
inline const Tools kTools{Scribble, Text, Arrow, Rectangle, Ellipse, Mosaic};

inline const char* nameOf(MainItem tool)
{
    static const char* const names[] = {"pen", "text", "arrow", "rectangle", "ellipse", "mosaic"};
    return names[tool];
}

/// Where the canvas keeps the pen of a tool.
struct PenAccess {
    QPen (ScribbleArea::*get)() const;
    void (ScribbleArea::*set)(const QPen&);
};

inline PenAccess penOf(MainItem tool)
{
    switch (tool) {
    case Scribble:
        return {&ScribbleArea::scribblePen, &ScribbleArea::setScribblePen};
    case Arrow:
        return {&ScribbleArea::arrowPen, &ScribbleArea::setArrowPen};
    case Rectangle:
        return {&ScribbleArea::rectPen, &ScribbleArea::setRectPen};
    case Ellipse:
        return {&ScribbleArea::ellipsePen, &ScribbleArea::setEllipsePen};
    default:
        return {&ScribbleArea::mosaicPen, &ScribbleArea::setMosaicPen};
    }
}

/// Calls `function` when the "Save As" dialog is open, which save() runs.
inline void whileSaving(const std::function<void(QFileDialog&)>& function)
{
    QTimer::singleShot(0, qApp, [function] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            qFatal("there is no save dialog");
        function(*dialog);
    });
}

/// Takes `name`, also one that the dialog itself would refuse. Cancels without a name.
inline void answer(QFileDialog& dialog, const QString& name)
{
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.findChild<QLineEdit*>()->setText(name);
    static_cast<QDialog&>(dialog).done(name.isEmpty() ? QDialog::Rejected : QDialog::Accepted);
}

/// One capture: its window, its tool bars, its canvas, and the mouse in front of it. The window is
/// gone when the probe is.
class CaptureProbe : public Mouse
{
public:
    CaptureProbe()
        : Mouse(ScreenCaptureWnd::screenCaptureWnd())
        , m_window(ScreenCaptureWnd::screenCaptureWnd())
    {
    }
    ~CaptureProbe() { delete m_window; }
    CaptureProbe(const CaptureProbe&) = delete;
    CaptureProbe& operator=(const CaptureProbe&) = delete;

    /// Connects and shows as a host does.
    void start(const Receiver& receiver) const
    {
        m_window->connectTo(const_cast<Receiver*>(&receiver), SLOT(onCaptured(QImage, bool)));
        m_window->showFullDesktop(true);
    }
    void saveAs(const QString& name) const
    {
        whileSaving([&name](QFileDialog& dialog) { answer(dialog, name); });
        m_window->save();
    }

    ScreenCaptureWnd* window() const { return m_window; }
    bool isGone() const { return m_window.isNull(); }
    ResizableRect* region() const { return m_window->findChild<ResizableRect*>(); }
    MagnifierWidget* loupe() const { return m_window->findChild<MagnifierWidget*>(); }
    ScribbleArea* canvas() const { return m_window->findChild<ScribbleArea*>(); }
    ResizableRect* frame() const { return canvas()->findChild<ResizableRect*>(); }
    QTextEdit* textBox() const { return canvas()->findChild<QTextEdit*>(); }

    QWidget* mainBar() const { return m_window->findChild<QWidget*>("mainToolBar"); }
    QWidget* subBar() const { return m_window->findChild<QWidget*>("subToolBar"); }
    QWidget* at(MainItem item) const { return mainBar()->layout()->itemAt(item)->widget(); }
    QWidget* at(SubItem item) const { return subBar()->layout()->itemAt(item)->widget(); }
    QPushButton* button(MainItem item) const { return qobject_cast<QPushButton*>(at(item)); }
    QComboBox* fontBox() const { return qobject_cast<QComboBox*>(at(FontBox)); }
    PenWidthWidget* widthPicker() const { return qobject_cast<PenWidthWidget*>(at(WidthPicker)); }
    QSlider* widthSlider() const { return widthPicker()->findChild<QSlider*>(); }
    QSlider* blurSlider() const { return at(BlurPanel)->findChild<QSlider*>(); }
    ColorWidget* palette() const { return qobject_cast<ColorWidget*>(at(Palette)); }

    void choose(MainItem item) const { button(item)->click(); }
    /// Drags out a region and puts a tool in the hand.
    void annotate(const QRect& region, MainItem tool) const
    {
        drag(region);
        choose(tool);
    }
    /// On the canvas, with whatever tool is chosen.
    void stroke(const QPoint& from, const QPoint& to) const { Mouse(canvas()).drag(from, to); }
    Tools checkedTools() const
    {
        Tools checked;
        for (const MainItem tool : kTools) {
            if (button(tool)->isChecked())
                checked << tool;
        }
        return checked;
    }
    QPen pen(MainItem tool) const { return (canvas()->*penOf(tool).get)(); }
    void setPen(MainItem tool, const QPen& pen) const { (canvas()->*penOf(tool).set)(pen); }
    /// Hovers and clicks a cell of the palette.
    void pickColor(int row, int col) const
    {
        const Mouse mouse(palette());
        mouse.hover(palette()->cellRect(row, col).center());
        mouse.press(palette()->cellRect(row, col).center());
    }

private:
    QPointer<ScreenCaptureWnd> m_window;
};

/// Brings the queued result to its receiver and deletes the window of an ended capture.
inline void deliver()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// Base of tests that each begin with one capture, as a host begins it.
class CaptureTest : public BehaviourTest
{
    Q_OBJECT

protected slots:
    void init()
    {
        BehaviourTest::init();
        m_receiver.reset(new Receiver);
        restart();
    }
    void cleanup()
    {
        m_capture.reset();
        m_receiver.reset();
        BehaviourTest::cleanup();
    }

protected:
    /// Begins another capture. The one before is gone.
    void restart()
    {
        m_capture.reset();
        m_capture.reset(new CaptureProbe);
        m_capture->start(*m_receiver);
    }
    ScreenCaptureWnd* window() const { return m_capture->window(); }

    QScopedPointer<CaptureProbe> m_capture;
    std::unique_ptr<Receiver> m_receiver;
};
