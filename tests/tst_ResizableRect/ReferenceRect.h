// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QPoint>
#include <QRect>
#include <Qt>

/// The rectangle's rules once more, in numbers, for comparison with any input.
struct ReferenceRect {
    QSize widget;
    Qt::CursorShape ownCursor;
    Qt::CursorShape cursor = ownCursor;
    QRect raw = {};
    bool visible = false;
    bool enabled = true;
    int press = -2;
    QPoint offset = {};
    int head = 0, tail = 0;
    int penWidth = 8;
    bool labelled = false;

    static bool isLeft(int id) { return id == 0 || id == 4 || id == 6; }
    static bool isRight(int id) { return id == 1 || id == 5 || id == 7; }
    static bool isTop(int id) { return id == 2 || id == 4 || id == 5; }
    static bool isBottom(int id) { return id == 3 || id == 6 || id == 7; }
    static bool isCorner(int id) { return id >= 4 && id <= 7; }

    static QRect dragged(int id, const QPoint& p, const QRect& r)
    {
        return {QPoint(isLeft(id) ? p.x() : r.left(), isTop(id) ? p.y() : r.top()),
                QPoint(isRight(id) ? p.x() : r.right(), isBottom(id) ? p.y() : r.bottom())};
    }
    static QPoint corner(int id, const QRect& r)
    {
        const bool right = isCorner(id) && isRight(id);
        const bool bottom = isCorner(id) && isBottom(id);
        return {right ? r.right() : r.left(), bottom ? r.bottom() : r.top()};
    }
    static QRect cornerMoved(int id, const QPoint& p, const QRect& r)
    {
        return isCorner(id) ? dragged(id, p, r) : r;
    }

    static int clamped(int v, int most) { return v < 0 ? 0 : v > most ? most : v; }
    QRect sized(const QRect& r) const
    {
        const int w = widget.width();
        const int h = widget.height();
        return {QPoint(clamped(r.left(), w), clamped(r.top(), h)),
                QPoint(clamped(r.right(), w), clamped(r.bottom(), h))};
    }
    /// How far an extent has to be shifted; the far edge wins.
    static int back(int first, int last, int most)
    {
        return last > most ? most - last : first < 0 ? -first : 0;
    }
    QRect moved(const QRect& r) const
    {
        return r.translated(back(r.left(), r.right(), widget.width()),
                            back(r.top(), r.bottom(), widget.height()));
    }

    bool isInside(const QRect& r) const
    {
        return r.left() >= 0 && r.top() >= 0 && r.right() <= widget.width() &&
               r.bottom() <= widget.height();
    }

    static bool isInverted(int first, int last) { return last < first - 1; }
    static QRect upright(const QRect& r)
    {
        const bool x = isInverted(r.left(), r.right());
        const bool y = isInverted(r.top(), r.bottom());
        return {QPoint(x ? r.right() : r.left(), y ? r.bottom() : r.top()),
                QPoint(x ? r.left() : r.right(), y ? r.top() : r.bottom())};
    }
    QRect rect() const { return upright(raw); }
    QRect label() const
    {
        const QPoint at = rect().topLeft();
        return {at.x(), at.y() < 28 ? at.y() : at.y() - 28, 100, 28};
    }
    QRect occupied() const
    {
        const int half = (penWidth < 8 ? 8 : penWidth) / 2;
        const QRect area = rect().adjusted(-half, -half, half + 1, half + 1);
        return labelled ? area.united(label()) : area;
    }

    static bool between(int v, int first, int last) { return first <= v && v <= last; }
    int where(const QPoint& p) const
    {
        const int w = raw.right() - raw.left() + 1;
        const int h = raw.bottom() - raw.top() + 1;
        for (int id = 0; id < 8; ++id) {
            const int x = raw.left() - 1 + (isLeft(id) ? 0 : isRight(id) ? w : w / 2);
            const int y = raw.top() - 1 + (isTop(id) ? 0 : isBottom(id) ? h : h / 2);
            if (between(p.x(), x - 3, x + 4) && between(p.y(), y - 3, y + 4))
                return id;
        }
        if (!raw.adjusted(-4, -4, 4, 4).contains(p))
            return -2;
        return raw.adjusted(4, 4, -4, -4).contains(p) ? -3 : -1;
    }

    void flipArrow(const QRect& r)
    {
        static const QMap<int, int> horizontal{{0, 1}, {1, 0}, {4, 5}, {5, 4}, {6, 7}, {7, 6}};
        static const QMap<int, int> vertical{{2, 3}, {3, 2}, {4, 6}, {6, 4}, {5, 7}, {7, 5}};
        static const QMap<int, int> both{{0, 2}, {2, 0}, {1, 3}, {3, 1},
                                         {4, 7}, {7, 4}, {5, 6}, {6, 5}};
        const bool x = isInverted(r.left(), r.right());
        const bool y = isInverted(r.top(), r.bottom());
        if (!x && !y)
            return;
        const QMap<int, int>& table = x && y ? both : x ? horizontal : vertical;
        head = table.value(head);
        tail = table.value(tail);
    }

    void setEnabled(bool on)
    {
        enabled = on;
        if (!on)
            cursor = ownCursor;
    }
    void mousePress(const QPoint& p)
    {
        if (!visible || !enabled)
            return;
        press = where(p);
        offset = p - rect().topLeft();
    }
    void mouseRelease()
    {
        if (!visible || !enabled)
            return;
        flipArrow(raw);
        if (press != -2)
            raw = rect();
    }
    void hover(const QPoint& p)
    {
        if (!visible || !enabled)
            return;
        const Qt::CursorShape handles[] = {
            Qt::SizeHorCursor,   Qt::SizeHorCursor,   Qt::SizeVerCursor,   Qt::SizeVerCursor,
            Qt::SizeFDiagCursor, Qt::SizeBDiagCursor, Qt::SizeBDiagCursor, Qt::SizeFDiagCursor};
        const int s = where(p);
        cursor = s == -2 ? ownCursor : s < 0 ? Qt::SizeAllCursor : handles[s];
    }
    /// Whether that changes the rectangle.
    bool drag(const QPoint& p)
    {
        if (!visible || !enabled || press == -2)
            return false;
        raw = sized(press < 0 ? moved(raw.translated(p - offset - raw.topLeft()))
                              : dragged(press, p, raw));
        return true;
    }
};
