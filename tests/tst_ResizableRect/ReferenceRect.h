// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QPoint>
#include <QRect>
#include <Qt>

/// The rectangle's rules once more, in plain edges, for comparison with random input.
struct ReferenceRect {
    int width;
    int height;
    int left = 0, top = 0, right = -1, bottom = -1;
    bool visible = false;
    bool enabled = true;
    int press = -2;
    int offsetX = 0, offsetY = 0;
    int head = 0, tail = 0;
    int changes = 0;
    Qt::CursorShape cursor;
    Qt::CursorShape ownCursor;

    ReferenceRect(int w, int h, Qt::CursorShape shape)
        : width(w)
        , height(h)
        , cursor(shape)
        , ownCursor(shape)
    {
    }

    QRect normalized() const
    {
        return QRect(QPoint(left, top), QPoint(right, bottom)).normalized();
    }

    static int clamp(int v, int most) { return v < 0 ? 0 : v > most ? most : v; }

    void set(int l, int t, int r, int b)
    {
        left = clamp(l, width);
        top = clamp(t, height);
        right = clamp(r, width);
        bottom = clamp(b, height);
        ++changes;
    }

    static bool between(int v, int first, int last) { return first <= v && v <= last; }

    int where(const QPoint& p) const
    {
        const int w = right - left + 1;
        const int h = bottom - top + 1;
        const int xs[] = {left - 1, left - 1 + w / 2, left - 1 + w};
        const int ys[] = {top - 1, top - 1 + h / 2, top - 1 + h};
        const int column[] = {0, 2, 1, 1, 0, 2, 0, 2};
        const int row[] = {1, 1, 0, 2, 0, 0, 2, 2};
        for (int id = 0; id < 8; ++id) {
            const int ax = xs[column[id]];
            const int ay = ys[row[id]];
            if (between(p.x(), ax - 3, ax + 4) && between(p.y(), ay - 3, ay + 4))
                return id;
        }
        if (!QRect(QPoint(left - 4, top - 4), QPoint(right + 4, bottom + 4)).contains(p))
            return -2;
        return QRect(QPoint(left + 4, top + 4), QPoint(right - 4, bottom - 4)).contains(p) ? -3
                                                                                           : -1;
    }

    void flipArrow(int l, int t, int r, int b)
    {
        const bool x = r - l + 1 < 0;
        const bool y = b - t + 1 < 0;
        static const QMap<int, int> horizontal{{0, 1}, {1, 0}, {4, 5}, {5, 4}, {6, 7}, {7, 6}};
        static const QMap<int, int> vertical{{2, 3}, {3, 2}, {4, 6}, {6, 4}, {5, 7}, {7, 5}};
        static const QMap<int, int> both{{0, 2}, {2, 0}, {1, 3}, {3, 1},
                                         {4, 7}, {7, 4}, {5, 6}, {6, 5}};
        if (!x && !y)
            return;
        const QMap<int, int>& table = x && y ? both : x ? horizontal : vertical;
        head = table.value(head);
        tail = table.value(tail);
    }

    QPoint corner(int id) const
    {
        return {id == 5 || id == 7 ? right : left, id == 6 || id == 7 ? bottom : top};
    }

    void moveEnd(int id, const QPoint& p)
    {
        int l = left, t = top, r = right, b = bottom;
        if (id >= 4 && id <= 7) {
            (id == 5 || id == 7 ? r : l) = p.x();
            (id == 6 || id == 7 ? b : t) = p.y();
        }
        flipArrow(l, t, r, b);
    }

    void mousePress(const QPoint& p)
    {
        if (!visible || !enabled)
            return;
        press = where(p);
        offsetX = p.x() - normalized().left();
        offsetY = p.y() - normalized().top();
    }

    void mouseRelease()
    {
        if (!visible || !enabled)
            return;
        flipArrow(left, top, right, bottom);
        if (press == -2)
            return;
        const QRect n = normalized();
        left = n.left();
        top = n.top();
        right = n.right();
        bottom = n.bottom();
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

    void drag(const QPoint& p)
    {
        if (!visible || !enabled || press == -2)
            return;
        int l = left, t = top, r = right, b = bottom;
        if (press < 0) {
            const int dx = p.x() - offsetX - l;
            const int dy = p.y() - offsetY - t;
            l += dx, r += dx, t += dy, b += dy;
            const int backX = r > width ? width - r : l < 0 ? -l : 0;
            const int backY = b > height ? height - b : t < 0 ? -t : 0;
            l += backX, r += backX, t += backY, b += backY;
        }
        if (press == 0 || press == 4 || press == 6)
            l = p.x();
        if (press == 1 || press == 5 || press == 7)
            r = p.x();
        if (press == 2 || press == 4 || press == 5)
            t = p.y();
        if (press == 3 || press == 6 || press == 7)
            b = p.y();
        set(l, t, r, b);
    }
};
