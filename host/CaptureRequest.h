// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QObject>
#include <QString>

/// Asks the library for one capture at a time and reports how it ended. This is all that an
/// application needs to write around the library.
class CaptureRequest : public QObject
{
    Q_OBJECT

public:
    explicit CaptureRequest(QObject* parent = nullptr);

    /// Photographs the desktop `delayMs` milliseconds from now. Does nothing while a capture runs.
    void start(int delayMs);
    bool isRunning() const { return m_running; }

signals:
    /// The user finished with a picture.
    void captured(const QImage& picture);
    /// The user cancelled, or finished without a region.
    void cancelled();
    /// The capture ended without the user, for a reason that the user can read.
    void failed(const QString& reason);

private slots:
    void showCapture();
    void onCaptureFinished(const QImage& picture, bool finished);

private:
    bool m_running = false;
};
