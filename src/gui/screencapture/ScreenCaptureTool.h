// SPDX-License-Identifier: MIT
#pragma once

#include "screencapture_export.h"

#include <QColor>
#include <QMap>
#include <QObject>
#include <QString>

/// The colours of the tools that have one; invalid until they are set.
struct ScreenCaptureToolColors {
    /// Of the freehand pen.
    QColor scribbleColor;
    /// Of the outline of rectangles.
    QColor rectColor;
    /// Of the outline of ellipses.
    QColor ellipseColor;
    /// Of arrows, which are filled.
    QColor arrowColor;
    /// Of text.
    QColor textColor;
};

/// The facade's memory, which lasts as long as the process.
class ScreenCaptureToolHelper : QObject
{
public:
    /// Fills in the default colours: red pens, black text.
    ScreenCaptureToolHelper();

    /// The key is the name of the member of ScreenCaptureToolColors.
    QMap<QString, QColor> m_penColors;
    /// The settings file; empty before ScreenCaptureTool::init().
    QString m_iniPath;
};

/// Tells the library where to keep its settings.
///
/// \code
/// const QString dir = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
/// QDir().mkpath(dir);
/// ScreenCaptureTool::init(dir);
/// \endcode
///
/// The settings file is "screencapture.ini" in that directory, an INI file with the group
/// "pen_color". Its keys "scribbleColor", "rectColor", "ellipseColor" and "arrowColor" have the
/// value 0xAARRGGBB in decimal. Other entries of the file are kept. Errors of reading and writing
/// are silent and leave the colours in memory as they are. GUI thread only.
class SCREENCAPTURE_EXPORT ScreenCaptureTool
{
public:
    /// Sets the settings directory, an absolute path without backslashes, and loads the colours.
    /// Call it once, before the first capture. The directory is not created: without it nothing is
    /// written. Without this call the colours last as long as the process.
    static void init(const QString& dir);

    /// Copies the colours from memory to `colors`, save for `textColor`, which stays as it is.
    static void penColor(ScreenCaptureToolColors& colors);

    /// Keeps all colours in memory and writes them, save for the text colour, to the file at once.
    /// Waits while another process holds the file's lock.
    static void setPenColor(const ScreenCaptureToolColors& colors);
};
