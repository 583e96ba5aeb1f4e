// SPDX-License-Identifier: MIT
#pragma once

#include "ScreenCaptureWnd.h"
#include "ScribbleArea.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPushButton>
#include <QString>

struct ScribbleAreaAccess {
    static int applied(const ScribbleArea& canvas) { return canvas.m_currentDiffIndex; }
    static int entries(const ScribbleArea& canvas) { return canvas.m_diffRectStack.size(); }
};

/// Looks inside the capture window.
struct ScreenCaptureWndAccess {
    static bool isIdle(const ScreenCaptureWnd& w)
    {
        return w.m_state == ScreenCaptureWnd::StateIdle;
    }
    static bool isSelected(const ScreenCaptureWnd& w)
    {
        return w.m_state >= ScreenCaptureWnd::StateSelected;
    }
    static bool isAnnotating(const ScreenCaptureWnd& w)
    {
        return w.m_state == ScreenCaptureWnd::StateAnnotating;
    }
    static bool exists() { return ScreenCaptureWnd::s_screenCaptureWnd != nullptr; }
    static const ScribbleArea* canvas(const ScreenCaptureWnd& w) { return w.m_scribbleArea; }

    static QString summary(const ScreenCaptureWnd& w)
    {
        const QWidget* focus = QApplication::focusWidget();
        return QString("state %1, %2, tools checked %3, focus on %4")
            .arg(w.m_state)
            .arg(w.isVisible() ? "visible" : "hidden")
            .arg(checkedTools(w))
            .arg(focus ? focus->metaObject()->className() + focus->accessibleName()
                       : QString("nothing"));
    }

    /// What is wrong with a living window; empty when nothing is.
    static QString complaint(const ScreenCaptureWnd& w)
    {
        if (ScreenCaptureWnd::s_screenCaptureWnd != &w)
            return "the window is not the one window";
        if (w.m_mainToolBar->isHidden() == isSelected(w))
            return "the main bar does not agree with state " + QString::number(w.m_state);
        if (w.m_subToolBar->isHidden() == isAnnotating(w))
            return "the sub bar does not agree with state " + QString::number(w.m_state);
        if (checkedTools(w) > 1)
            return "more than one tool is checked";
        if (!isAnnotating(w) && checkedTools(w) > 0)
            return "a tool is checked while nothing is annotated";
        return complaintAboutCanvas(w);
    }

    static bool offersRedoInVain(const ScreenCaptureWnd& w)
    {
        return w.m_btnRedo->isEnabled() && !(w.m_scribbleArea && w.m_scribbleArea->canRedo());
    }

private:
    static int checkedTools(const ScreenCaptureWnd& w)
    {
        int count = 0;
        for (const QAbstractButton* button : {w.m_btnScribble, w.m_btnText, w.m_btnArrow,
                                              w.m_btnRect, w.m_btnEllipse, w.m_btnMosaic})
            count += button->isChecked() ? 1 : 0;
        return count;
    }

    static QString complaintAboutCanvas(const ScreenCaptureWnd& w)
    {
        if (!w.m_scribbleArea)
            return isAnnotating(w) ? "there is no canvas to annotate on" : QString();
        if (w.m_scribbleArea->isHidden() == isAnnotating(w))
            return "the canvas does not agree with state " + QString::number(w.m_state);
        const int applied = ScribbleAreaAccess::applied(*w.m_scribbleArea);
        if (applied < 0 || applied > ScribbleAreaAccess::entries(*w.m_scribbleArea))
            return "the history index is out of bounds";
        return QString();
    }
};
