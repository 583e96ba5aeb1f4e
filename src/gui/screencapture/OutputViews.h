// SPDX-License-Identifier: MIT
#pragma once

#include <QGraphicsScene>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QVector>

#include <memory>
#include <vector>

class QGraphicsProxyWidget;
class QGraphicsView;
class QWidget;
class QWindow;

/// Shows one window on every output of a Wayland session until it is let go.
///
/// No surface of a Wayland client spans outputs, and none can place itself. So the window is part
/// of a scene, of which each output shows its part full-screen, at its own scale. What the window
/// opens, lists of combo boxes and dialogs, becomes part of the scene, too. Dialogs of the host's
/// own stand above the outputs.
///
/// GUI thread only.
class OutputViews : public QObject
{
    Q_OBJECT

public:
    /// Gives `window`, which is hidden, the size of all outputs together. The window is not owned.
    explicit OutputViews(QWidget* window);
    ~OutputViews() override;

    /// Show and hide the outputs' views. The window is shown and hidden by itself.
    void show();
    void hide();

    /// Whether the pointer does something in the window at the moment. Qt does not allow that the
    /// window is deleted meanwhile.
    bool handsOn() const { return m_handsOn; }

    /// Gives the window back, hides the views and deletes this later: a key that is handed on to
    /// the window may be what ends it.
    void letGo();

    /// Returns what each output shows, in coordinates of the window.
    static QVector<QRect> outputs();

    /// Returns where the pointer is, in coordinates of the window.
    static QPoint cursorPos();

    /// \cond
    bool eventFilter(QObject* watched, QEvent* event) override;
    /// \endcond

private:
    /// Whether it is what the window has opened.
    bool isInScene(const QObject* object) const;
    static void place(QWidget* opened);
    void showAbove(QWindow* dialog);
    const QWidget* underCursor() const;
    void takeFocusBack();

    bool m_handsOn = false;
    QGraphicsScene m_scene;
    QGraphicsProxyWidget* m_proxy = nullptr;
    std::vector<std::unique_ptr<QGraphicsView>> m_views;
    /// The host's dialogs that have been opened, and the windows to which they belong.
    QHash<QWindow*, QPointer<QWindow>> m_dialogs;

    Q_DISABLE_COPY(OutputViews)
};
