// SPDX-License-Identifier: MIT
#pragma once

#include "BehaviourTest.h"
#include "HostProcess.h"
#include "Outputs.h"
#include "Pointer.h"

#include <QProcess>
#include <QScopedPointer>

#include <csignal>
#include <memory>
#include <vector>

/// While it lives, the portal does not answer.
class StoppedPortal
{
public:
    StoppedPortal() { kill(m_backend, SIGSTOP); }
    ~StoppedPortal() { kill(m_backend, SIGCONT); }
    Q_DISABLE_COPY(StoppedPortal)

private:
    const pid_t m_backend = processOf(kPortalBackend);
};

/// Base of tests in which another process takes captures, with real input, in the session that
/// tests/wayland/desktop has started. The desktop is of tiles in random colours.
///
/// Points and rectangles are in the coordinates that all outputs share, from their corner, and in
/// those of the capture window, which are the same.
class WaylandTest : public BehaviourTest
{
    Q_OBJECT

protected slots:
    void initTestCase();
    void cleanupTestCase();
    void init();
    /// Compares the desktop with what it was.
    void cleanup();

protected:
    void startCapture();
    void checkOverlay();
    void expectEnd(const QString& how);
    void expectDelivered(const QRect& region);

    QRect where(const QString& name) { return m_host->place(name).inWindow; }
    bool isOnAnOutput(const QPoint& p) const;
    /// Whether the widget is wholly on one output.
    bool isOnOneOutput(const QString& name);
    /// Whether the widget is wholly on the output that holds the region.
    bool isOnOutputOf(const QString& name, const QRect& region);

    /// A key for the capture, when it has had the time to take the keyboard.
    void key(const QString& name);
    void type(const QString& text);
    void moveTo(const QPointF& p);
    void click(const QPoint& p, Qt::MouseButton button = Qt::LeftButton);
    void clickOn(const QString& name);
    /// Drags without letting go.
    void press(const QPointF& from, const QPointF& to);
    void drag(const QPointF& from, const QPointF& to);
    void select(const QPointF& from, const QPointF& to);
    void select(const QRect& region);

    /// Makes the outputs as they were.
    void restoreOutputs();

    /// The pixels of the whole picture.
    QRect pixelsOf(const QRect& area) const;

    /// Whether the capture is a client of Xwayland.
    bool m_isXwayland = false;
    QVector<Output> m_outputs;
    QSize m_size;
    /// Of the whole picture.
    qreal m_scale = 1;
    QImage m_atStart;
    QScopedPointer<HostProcess> m_host;
    /// Whether the desktop is not there as it was afterwards.
    bool m_isDesktopSpoilt = false;

private:
    void showTiles();
    bool isWithin(const QString& name, const QRect& area);
    void sendKeys(const QStringList& words);
    QString overlayDifference(int output, const QRect& loupe) const;

    QTemporaryDir m_scratch;
    std::vector<std::unique_ptr<QProcess>> m_backgrounds;
    QVector<QImage> m_atStartOn;
    QScopedPointer<Pointer> m_pointer;
};
