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

/// Shows one window on every output of a Wayland session until it is destroyed.
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
    /// Gives `window`, which is hidden, the size of all outputs together, and shows it. The window
    /// is not owned.
    explicit OutputViews(QWidget* window);
    ~OutputViews() override;

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

    QPointer<QWidget> m_window;
    QGraphicsScene m_scene;
    QPointer<QGraphicsProxyWidget> m_proxy;
    std::vector<std::unique_ptr<QGraphicsView>> m_views;
    /// The host's dialogs that have been opened, and the windows to which they belong.
    QHash<QWindow*, QPointer<QWindow>> m_dialogs;

    Q_DISABLE_COPY(OutputViews)
};
