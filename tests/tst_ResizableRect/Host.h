// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QWidget>
#include <QtTest>

inline const QRect kRect(10, 10, 100, 50);
inline const QColor kColor(0x88, 0x88, 0xff);

/// A host that counts what reaches it and remembers what it was asked to repaint.
class Host : public QWidget
{
public:
    explicit Host(const QSize& size = QSize(400, 300))
    {
        resize(size);
        setMouseTracking(true);
    }

    int mouseEvents = 0;
    QRegion painted;

    void press(const QPoint& p, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonPress, p, button, button);
    }
    void drag(const QPoint& p) { send(QEvent::MouseMove, p, Qt::NoButton, Qt::LeftButton); }
    void hover(const QPoint& p, Qt::MouseButtons buttons = Qt::NoButton)
    {
        send(QEvent::MouseMove, p, Qt::NoButton, buttons);
    }
    void release(const QPoint& p, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonRelease, p, button, Qt::NoButton);
    }

    /// What is repainted by `change`.
    template <typename Change>
    QRegion repaintedBy(Change change)
    {
        show();
        [&] { QVERIFY(QTest::qWaitForWindowExposed(this)); }();
        QApplication::processEvents();
        painted = QRegion();
        change();
        QApplication::processEvents();
        return painted;
    }

protected:
    bool event(QEvent* event) override
    {
        if (dynamic_cast<QMouseEvent*>(event))
            ++mouseEvents;
        return QWidget::event(event);
    }
    void mousePressEvent(QMouseEvent* event) override { event->ignore(); }
    void mouseReleaseEvent(QMouseEvent* event) override { event->ignore(); }
    void mouseMoveEvent(QMouseEvent* event) override { event->ignore(); }
    void paintEvent(QPaintEvent* event) override { painted += event->region(); }

private:
    void send(QEvent::Type type, const QPoint& p, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, p, button, buttons, Qt::NoModifier);
        QApplication::sendEvent(this, &event);
    }
};

/// Where the handle of kRect is centred.
inline QPoint anchorOf(int id)
{
    const QPoint anchors[] = {{9, 34}, {109, 34}, {59, 9}, {59, 59},
                              {9, 9},  {109, 9},  {9, 59}, {109, 59}};
    return anchors[id];
}

inline QRect handleAt(const QPoint& anchor)
{
    return {anchor - QPoint(3, 3), anchor + QPoint(4, 4)};
}
