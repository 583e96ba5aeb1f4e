// SPDX-License-Identifier: MIT
#include "OneCapture.h"

#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageWriter>
#include <QSaveFile>
#include <QTextStream>
#include <utility>

OneCapture::OneCapture(CommandLine commandLine)
    : m_commandLine(std::move(commandLine))
{
    connect(&m_request, &CaptureRequest::captured, this, &OneCapture::onCaptured);
    connect(&m_request, &CaptureRequest::cancelled, this,
            [] { QCoreApplication::exit(Cancelled); });
    connect(&m_request, &CaptureRequest::failed, this, [](const QString& reason) {
        QTextStream(stderr) << "capture-host: " << reason << '\n';
        QCoreApplication::exit(Failed);
    });
}

void OneCapture::start()
{
    m_request.start(m_commandLine.delayMs());
}

void OneCapture::onCaptured(const QImage& picture)
{
    const bool written = m_commandLine.output().isEmpty() || write(picture);
    if (!written)
        QCoreApplication::exit(Failed);
    else if (m_commandLine.toClipboard())
        serveClipboard(picture);
    else
        QCoreApplication::exit(Pictured);
}

// A file that cannot be written whole leaves the one that stood there as it was. That file is
// replaced by another in the end, which a device or a pipe must not be.
bool OneCapture::write(const QImage& picture) const
{
    const QFileInfo target(m_commandLine.output());
    QSaveFile file(target.filePath());
    const QByteArray format = target.suffix().toLower().toLatin1();
    QString error;
    if (target.exists() && !target.isFile()) {
        error = tr("not a regular file");
    } else if (file.open(QIODevice::WriteOnly)) {
        QImageWriter writer(&file, format);
        if (!writer.write(picture))
            error = writer.errorString();
        else if (file.commit())
            return true;
    }
    if (error.isEmpty())
        error = file.errorString();
    QTextStream(stderr)
        << tr("capture-host: cannot write '%1': %2").arg(m_commandLine.output(), error) << '\n';
    return false;
}

// The X server keeps no clipboard of its own: whoever offers the picture has to be there when it is
// pasted, until another program offers something else.
void OneCapture::serveClipboard(const QImage& picture)
{
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->setImage(picture);
    connect(clipboard, &QClipboard::dataChanged, this, [clipboard] {
        if (!clipboard->ownsClipboard())
            QCoreApplication::exit(Pictured);
    });
}
