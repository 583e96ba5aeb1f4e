// SPDX-License-Identifier: MIT
#pragma once

#include "screencapture_export.h"

#include <QColor>
#include <QMap>
#include <QObject>
#include <QString>

/// The colours of the tools that have one; invalid until they are set.
struct ScreenCaptureToolColors {
    /// The pen.
    QColor scribbleColor;
    /// The frame of a rectangle.
    QColor rectColor;
    /// The outline of an ellipse.
    QColor ellipseColor;
    /// The arrow, filled.
    QColor arrowColor;
    /// What is typed.
    QColor textColor;
};

/// What the facade remembers for the life of the process.
class ScreenCaptureToolHelper : QObject
{
public:
    /// Fills in the default colours: a red pen, black text.
    ScreenCaptureToolHelper();

    /// By the name of the member of ScreenCaptureToolColors.
    QMap<QString, QColor> m_penColors;
    /// The settings file; empty before ScreenCaptureTool::init().
    QString m_iniPath;
};

/// Through this an application says where the library keeps its settings.
///
/// \code
/// const QString dir = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
/// QDir().mkpath(dir);
/// ScreenCaptureTool::init(dir);
/// \endcode
///
/// The settings are the file "screencapture.ini" in that directory, an INI file with the group
/// "pen_color": one decimal number 0xAARRGGBB for each of "scribbleColor", "rectColor",
/// "ellipseColor" and "arrowColor". Other entries of the file are kept. Errors of reading and
/// writing are silent; what is in memory then stays. GUI thread only.
class SCREENCAPTURE_EXPORT ScreenCaptureTool
{
public:
    /// Names the settings directory, an absolute path without backslashes, and loads the colours.
    /// To be called once, before the first capture. The directory must exist to be written to: it
    /// is not created.
    /// Without this call colours live as long as the process.
    static void init(const QString& dir);

    /// Fills in four of the colours as they are in memory; `textColor` stays as it is.
    static void penColor(ScreenCaptureToolColors& colors);

    /// Remembers all five colours and writes all but the text colour to the file, at once; that can
    /// take as long as another process holds the file's lock.
    static void setPenColor(const ScreenCaptureToolColors& colors);
};
