// SPDX-License-Identifier: MIT
#pragma once

#include "BehaviourTest.h"
#include "HostProcess.h"
#include "XServer.h"

#include <QLineEdit>
#include <QScopedPointer>

/// So many of the overlay's coordinates within a region its frame may cover.
constexpr int kFrameBand = 8;

/// A window with a picture as background, outside the window manager's reach or as an ordinary one.
class Picture : public QWidget
{
public:
    Picture(const QImage& picture, Qt::WindowFlags flags);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage m_picture;
};

/// Base of tests in which another process takes captures, with real input, on the desktop that
/// tests/desktops/desktop has started. Beside the panel the desktop shows a picture in which each
/// pixel tells its place, and the notes: a window of noise with a line that takes keys.
///
/// Points and rectangles are in the physical pixels of the root window.
class DesktopTest : public BehaviourTest
{
    Q_OBJECT

protected slots:
    void initTestCase();
    void init();
    /// Compares the desktop with what it was, and looks for what the capture still holds.
    void cleanup();

protected:
    static bool isManagerRefusing();
    /// What is on the screen, once it does not change any more.
    QImage stillPicture();
    /// In the notes, because with some window managers the focus follows the pointer.
    QPoint beneathLine() const;
    /// In the notes, where each pixel tells its place.
    QRect overNotes() const;

    void startCapture();
    void checkOverlay();
    void expectEnd(const QString& how);
    void expectDelivered(const QRect& dragged);

    /// The widget's rectangle on the root window.
    QRect where(const QString& name);
    /// Whether the widget is above everything else at its centre and its corners.
    bool isAbove(const QString& name);

    void key(const QString& name);
    /// A key for the capture, when it has had the time to take the keyboard.
    void keyToCapture(const QString& name);
    void click(const QPoint& p);
    void clickOn(const QString& name);
    /// Drags without letting go.
    void press(const QPoint& from, const QPoint& to);
    void drag(const QPoint& from, const QPoint& to);
    void select(const QPoint& from, const QPoint& to);
    void select(const QRect& region);

    /// The overlay's coordinates that lie on a pixel, both from its top-left corner on.
    QPoint coordinatesAt(const QPoint& pixel) const;
    /// The pixels of a rectangle of the overlay.
    QRect pixelsOf(const QRect& area) const;
    /// The region that a drag over these pixels selects. The overlay's coordinates are as many
    /// pixels wide as its ratio says, and so are those at the region's edges.
    QRect selected(const QRect& dragged) const;

    QScopedPointer<XServer> m_server;
    QScopedPointer<Picture> m_notes;
    QLineEdit* m_line = nullptr;
    QScopedPointer<HostProcess> m_host;
    /// What the capture finds on the screen.
    QImage m_atStart;
    bool m_screensChanged = false;
    /// The physical pixels of each of the overlay's coordinates.
    qreal m_ratio = 1;

private:
    bool isDesktopBelowPanel() const;
    bool areNotesSeen() const;
    /// Whether keys go to the line of the notes.
    bool hasKeyboard() const;
    void expectAsBefore();
    QString overlayDifference(const QRect& screen);

    QScopedPointer<Picture> m_desktop;
    QImage m_before;
    QStringList m_arrangement;
};
