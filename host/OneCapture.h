// SPDX-License-Identifier: MIT
#pragma once

#include "CaptureRequest.h"
#include "CommandLine.h"

/// `--once`: one capture, after which the application exits.
class OneCapture : public QObject
{
    Q_OBJECT

public:
    enum ExitCode { Pictured = 0, Cancelled = 1, Failed = 2 };

    explicit OneCapture(CommandLine commandLine);
    void start();

private slots:
    void onCaptured(const QImage& picture);

private:
    bool write(const QImage& picture) const;
    void serveClipboard(const QImage& picture);

    const CommandLine m_commandLine;
    CaptureRequest m_request;
};
