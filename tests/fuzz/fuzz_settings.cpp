// SPDX-License-Identifier: MIT
#include "Files.h"
#include "Require.h"
#include "ScreenCaptureTool.h"

#include <QColor>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <string>

namespace
{

constexpr std::size_t kStoredEvery = 8;

void dropMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& /*text*/)
{
}

bool operator==(const ScreenCaptureToolColors& a, const ScreenCaptureToolColors& b)
{
    return a.scribbleColor == b.scribbleColor && a.rectColor == b.rectColor &&
           a.ellipseColor == b.ellipseColor && a.arrowColor == b.arrowColor;
}

ScreenCaptureToolColors colorsNow()
{
    ScreenCaptureToolColors colors;
    ScreenCaptureTool::penColor(colors);
    REQUIRE(!colors.textColor.isValid());
    return colors;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    qInstallMessageHandler(dropMessage);
    return 0;
}

/// The input is the settings file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // A directory of its own, because Qt remembers files by their name.
    const Scratch scratch;
    const QString directory = QString::fromStdString(scratch.path());
    writeFile(scratch.path("screencapture.ini"),
              std::string(reinterpret_cast<const char*>(data), size));
    ScreenCaptureTool::init(directory);
    const ScreenCaptureToolColors loaded = colorsNow();
    REQUIRE(loaded.scribbleColor.isValid() && loaded.rectColor.isValid() &&
            loaded.ellipseColor.isValid() && loaded.arrowColor.isValid());

    // What is stored over such a file is there again when it is read. Not each time: it is slow.
    if (size % kStoredEvery != 0)
        return 0;
    ScreenCaptureToolColors stored;
    stored.scribbleColor = QColor(1, 2, 3, 4);
    stored.rectColor = Qt::black;
    stored.ellipseColor = Qt::transparent;
    stored.arrowColor = QColor(255, 254, 253);
    stored.textColor = Qt::white;
    ScreenCaptureTool::setPenColor(stored);
    ScreenCaptureTool::init(directory);
    REQUIRE(colorsNow() == stored);
    return 0;
}
