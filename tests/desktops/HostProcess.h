// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QMap>
#include <QProcess>
#include <QRect>
#include <QString>
#include <QTemporaryDir>

#include <xcb/xcb.h>

/// What the case of the test sets, by variable.
QMap<QString, QString> scaleSettings();

/// The process that takes the capture.
class HostProcess
{
public:
    HostProcess();
    ~HostProcess();
    void kill();

    qint64 pid() const { return m_process.processId(); }
    bool lives() const { return m_process.state() == QProcess::Running; }
    bool hasCrashed() const { return !lives() && m_process.exitStatus() == QProcess::CrashExit; }
    int exitCode() const { return m_process.exitCode(); }
    bool hasEnded() const { return !m_end.isEmpty() || !lives(); }

    /// Empty where there is no answer, because the capture has ended or hangs.
    QString ask(const QString& question);

    struct Place {
        xcb_window_t window = XCB_NONE;
        QRect inWindow;
    };
    Place place(const QString& name);
    QString content(const QString& name) { return ask("content " + name); }
    /// The physical pixels of each of the overlay's coordinates.
    qreal ratio() { return ask("ratio ScreenCaptureWnd").toDouble(); }
    /// The screen on which the overlay takes itself to be.
    QString screen() { return ask("screen"); }
    /// The same for the densest screen.
    qreal largestRatio() { return ask("largest ratio").toDouble(); }

    /// "captured", "cancelled" or "failed: " and why; empty where the capture does not end.
    QString end();
    QImage picture() const { return written("picture.bmp"); }
    /// A picture in the directory in which the process runs. At first it is empty, so that the
    /// Save As dialog opens no list of completions, whose coming and going may cost a key.
    QImage written(const QString& name) const { return QImage(m_scratch.filePath(name)); }

private:
    QTemporaryDir m_scratch;
    QProcess m_process;
    QString m_end;
};
