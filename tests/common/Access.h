// SPDX-License-Identifier: MIT
#pragma once

#include "OverlayPainting.h"
#include "ScreenCaptureWnd.h"
#include "ScribbleArea.h"

// What tests see of the private side of a class. Each struct is a friend of its class.

struct ScreenCaptureWndAccess {
    static int state(const ScreenCaptureWnd& window) { return window.m_state; }
    static const ScreenCaptureWnd* instance() { return ScreenCaptureWnd::s_screenCaptureWnd; }
    /// Makes `desktop` what was grabbed.
    static void setDesktop(ScreenCaptureWnd* window, const QImage& desktop)
    {
        *window->m_desktopImage = desktop;
        window->m_dimmedImage = overlay::dimmed(desktop);
    }
    /// The highlighted window, in coordinates of the desktop.
    static QRect& highlight(ScreenCaptureWnd* window) { return window->m_grabWindowRect; }
};

struct ScribbleAreaAccess {
    using History = QList<ScribbleArea::DiffRect>;
    static History history(const ScribbleArea& canvas) { return canvas.m_diffRectStack; }
    /// How many entries of the history are not undone.
    static int applied(const ScribbleArea& canvas) { return canvas.m_currentDiffIndex; }
    static bool modified(const ScribbleArea& canvas) { return canvas.m_modified; }
    static bool scribbling(const ScribbleArea& canvas) { return canvas.m_scribbling; }
    static int paintType(const ScribbleArea& canvas) { return canvas.m_paintType; }
    static int graphState(const ScribbleArea& canvas) { return canvas.m_graphState; }
    static int mosaicBlur(const ScribbleArea& canvas) { return canvas.m_mosaicBlur; }
    static QImage pixelated(const ScribbleArea& canvas) { return canvas.m_mosaicImage; }
    /// Rebuilds the pixelated picture.
    static const QTimer& mosaicTimer(const ScribbleArea& canvas) { return canvas.m_mosaicTimer; }
    static void restore(ScribbleArea& canvas) { canvas.restoreDiffRect(); }
    static void drawText(ScribbleArea& canvas) { canvas.drawText(); }
    static void initTextEdit(ScribbleArea& canvas) { canvas.initTextEdit(); }
};
