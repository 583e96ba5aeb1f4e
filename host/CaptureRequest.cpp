// SPDX-License-Identifier: MIT
#include "CaptureRequest.h"

#include <ScreenCaptureWnd.h>

#include <QTimer>

CaptureRequest::CaptureRequest(QObject* parent)
    : QObject(parent)
{
}

void CaptureRequest::start(int delayMs)
{
    if (m_running)
        return;
    m_running = true;
    QTimer::singleShot(delayMs, this, &CaptureRequest::showCapture);
}

void CaptureRequest::showCapture()
{
    ScreenCaptureWnd* capture = ScreenCaptureWnd::screenCaptureWnd();
    capture->connectTo(this, SLOT(onCaptureFinished(QImage, bool)));
    capture->showFullDesktop(true);
}

void CaptureRequest::onCaptureFinished(const QImage& picture, bool finished)
{
    m_running = false;
    if (finished && !picture.isNull())
        emit captured(picture);
    else if (!ScreenCaptureWnd::failure().isEmpty())
        emit failed(ScreenCaptureWnd::failure());
    else
        emit cancelled();
}
