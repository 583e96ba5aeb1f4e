// SPDX-License-Identifier: MIT
#pragma once

#include "Mouse.h"
#include "ReferenceRect.h"
#include "ResizableRect.h"

#include <QCursor>
#include <QMouseEvent>
#include <cstddef>

/// Does to a rectangle and to its reference what bytes say, and compares them after each step.
class RectWalk
{
public:
    static constexpr std::size_t kStepBytes = 5;

    /// What differs first, empty when nothing does.
    static QByteArray differenceAfter(const uchar* bytes, std::size_t size)
    {
        RectWalk walk;
        for (std::size_t at = 0; at + kStepBytes <= size; at += kStepBytes) {
            walk.step(bytes + at);
            const QByteArray difference = walk.difference();
            if (!difference.isEmpty())
                return difference + ", after step " + QByteArray::number(int(at / kStepBytes));
        }
        return {};
    }

private:
    class Host : public QWidget
    {
    public:
        Host()
        {
            resize(120, 90);
            setMouseTracking(true);
            setCursor(Qt::IBeamCursor);
        }
        int mouseEvents = 0;

    protected:
        bool event(QEvent* event) override
        {
            mouseEvents += dynamic_cast<QMouseEvent*>(event) ? 1 : 0;
            return QWidget::event(event);
        }
    };

    RectWalk()
        : m_mouse(&m_host)
        , m_rect(&m_host, QRect())
        , m_reference{m_host.size(), Qt::IBeamCursor}
    {
        QObject::connect(&m_rect, &ResizableRect::rectChanged, [this](const QRect& r, bool sized) {
            ++m_changes;
            m_reported = r;
            m_sized = m_sized && sized;
        });
    }

    /// On the host and beside it.
    static QPoint point(uchar x, uchar y) { return {x % 165 - 20, y % 135 - 20}; }

    void step(const uchar* bytes)
    {
        m_p = point(bytes[1], bytes[2]);
        m_q = point(bytes[3], bytes[4]);
        constexpr int kMouseActions = 12;
        const int action = bytes[0] % 23;
        if (action < kMouseActions)
            useMouse(action);
        else
            change(action - kMouseActions);
    }

    void useMouse(int action)
    {
        ++m_events;
        switch (action) {
        case 0:
        case 1:
            m_mouse.press(m_p);
            m_reference.mousePress(m_p);
            break;
        case 2:
            m_mouse.press(m_p, Qt::RightButton);
            break;
        case 3:
        case 4:
            m_mouse.move(m_p);
            countChange(m_reference.drag(m_p));
            break;
        case 5:
            m_mouse.move(m_p, Qt::LeftButton | Qt::RightButton);
            countChange(m_reference.drag(m_p));
            break;
        case 6:
            m_mouse.hover(m_p);
            m_reference.hover(m_p);
            break;
        case 7:
            m_mouse.move(m_p, Qt::RightButton);
            m_reference.hover(m_p);
            break;
        case 8:
        case 9:
            m_mouse.release(m_p);
            m_reference.mouseRelease();
            break;
        case 10:
            m_mouse.release(m_p, Qt::RightButton);
            break;
        default:
            m_mouse.doubleClick(m_p);
            break;
        }
    }

    void change(int what)
    {
        const bool on = m_p.x() > 0;
        switch (what) {
        case 0:
            m_rect.setRect(QRect(m_p, m_q));
            m_reference.raw = m_reference.sized(QRect(m_p, m_q));
            countChange(true);
            break;
        case 1:
        case 2:
            m_rect.setVisible(on);
            m_reference.visible = on;
            break;
        case 3:
            m_rect.setEnabled(on);
            m_reference.setEnabled(on);
            break;
        case 4:
            m_rect.setGraphPenWidth(m_p.x());
            m_reference.penWidth = m_p.x();
            break;
        case 5:
            m_rect.setSizeInforVisible(on);
            m_reference.labelled = on;
            break;
        case 6:
            m_host.setCursor(Qt::WaitCursor);
            m_reference.cursor = Qt::WaitCursor;
            break;
        default:
            changeArrow(what);
            break;
        }
    }

    void changeArrow(int what)
    {
        switch (what) {
        case 7:
            m_rect.initArrow();
            m_reference.head = 5;
            m_reference.tail = 6;
            break;
        case 8:
            m_rect.setArrowHead(m_p);
            m_reference.flipArrow(
                ReferenceRect::cornerMoved(m_reference.head, m_p, m_reference.raw));
            break;
        case 9:
            m_rect.setArrowTail(m_p);
            m_reference.flipArrow(
                ReferenceRect::cornerMoved(m_reference.tail, m_p, m_reference.raw));
            break;
        default:
            m_rect.updateArrowRect(QRect(m_p, m_q));
            m_reference.flipArrow(QRect(m_p, m_q));
            break;
        }
    }

    void countChange(bool changes)
    {
        if (!changes)
            return;
        ++m_expectedChanges;
        m_expectedReport = m_reference.rect();
    }

    QByteArray difference()
    {
        const QRect r(m_p, m_q);
        QRect moved = r;
        m_rect.ensureMovingRectInWidget(moved);
        QRect sized = r;
        m_rect.ensureSizingRectInWidget(sized);
        const struct {
            const char* what;
            bool isSame;
        } checks[] = {
            {"rect()", m_rect.rect() == m_reference.rect()},
            {"pos()", m_rect.pos() == m_reference.rect().topLeft()},
            {"occupiedRect()", m_rect.occupiedRect() == m_reference.occupied()},
            {"sizeInforPaintRect()", m_rect.sizeInforPaintRect() == m_reference.label()},
            {"isVisible()", m_rect.isVisible() == m_reference.visible},
            {"isSizeInforVisible()", m_rect.isSizeInforVisible() == m_reference.labelled},
            {"mousePressSection()", m_rect.mousePressSection() == m_reference.press},
            {"arrowHead()", m_rect.arrowHead() == endAt(m_reference.head)},
            {"arrowTail()", m_rect.arrowTail() == endAt(m_reference.tail)},
            {"rectChanged()", m_changes == m_expectedChanges && m_sized},
            {"what rectChanged() reports", m_reported == m_expectedReport},
            {"cursor", m_host.cursor().shape() == m_reference.cursor},
            {"events that reach the host", m_host.mouseEvents == m_events},
            {"ensureMovingRectInWidget()", moved == m_reference.moved(r)},
            {"ensureSizingRectInWidget()", sized == m_reference.sized(r)},
            {"isRectInWidget()",
             m_rect.isRectInWidget(r) == m_reference.isInside(ReferenceRect::upright(r))},
            {"corners", cornersAreSame(r)},
            {"wherePoint()", sectionsAreSame()},
        };
        for (const auto& check : checks) {
            if (!check.isSame)
                return check.what;
        }
        return {};
    }

    QPoint endAt(int corner) const { return ReferenceRect::corner(corner, m_reference.raw); }

    bool cornersAreSame(const QRect& r)
    {
        for (int id = -3; id <= 8; ++id) {
            QRect changed = m_reference.raw;
            m_rect.setArrowRectPoint(id, m_p, changed);
            if (changed != ReferenceRect::cornerMoved(id, m_p, m_reference.raw) ||
                m_rect.getArrowRectPoint(id, r) != ReferenceRect::corner(id, r))
                return false;
        }
        return true;
    }

    bool isSameAt(const QPoint& p) const
    {
        const int section = m_reference.where(p);
        return m_rect.wherePoint(p) == section && m_rect.contains(p) == (section != -2);
    }

    /// Along the row and the column of a point.
    bool sectionsAreSame() const
    {
        for (int x = -25; x < 150; ++x) {
            if (!isSameAt(QPoint(x, m_q.y())))
                return false;
        }
        for (int y = -25; y < 120; ++y) {
            if (!isSameAt(QPoint(m_q.x(), y)))
                return false;
        }
        return true;
    }

    Host m_host;
    Mouse m_mouse;
    ResizableRect m_rect;
    ReferenceRect m_reference;
    QPoint m_p;
    QPoint m_q;
    int m_events = 0;
    int m_changes = 0;
    int m_expectedChanges = 0;
    bool m_sized = true;
    QRect m_reported;
    QRect m_expectedReport;
};
