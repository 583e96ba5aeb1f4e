// SPDX-License-Identifier: MIT
#include "ScreenCaptureTool.h"

#include "myfs.h"

#include <QFileInfo>
#include <QSettings>
#include <QVariant>

namespace
{

const char* const kSettingsFile = "screencapture.ini";
const char* const kColorGroup = "pen_color";
const char* const kTextColor = "textColor";

const QColor kDefaultPenColor(251, 56, 56, 255);
const QColor kDefaultTextColor(0, 0, 0, 255);

struct StoredColor {
    const char* key;
    QColor ScreenCaptureToolColors::*color;
};

// Intended: the text colour is read like any other, but neither handed out nor written.
const StoredColor kStoredColors[] = {
    {"scribbleColor", &ScreenCaptureToolColors::scribbleColor},
    {"rectColor", &ScreenCaptureToolColors::rectColor},
    {"ellipseColor", &ScreenCaptureToolColors::ellipseColor},
    {"arrowColor", &ScreenCaptureToolColors::arrowColor},
};

ScreenCaptureToolHelper s_Helper;

// Qt creates a missing directory, which is the application's to create. An empty name has none.
bool hasDirectory(const QString& file)
{
    return QFileInfo::exists(QFileInfo(file).path());
}

} // namespace

ScreenCaptureToolHelper::ScreenCaptureToolHelper()
{
    for (const StoredColor& stored : kStoredColors)
        m_penColors[stored.key] = kDefaultPenColor;
    m_penColors[kTextColor] = kDefaultTextColor;
}

void ScreenCaptureTool::init(const QString& dir)
{
    myfs::path file(dir.toStdString());
    file.append(kSettingsFile);
    s_Helper.m_iniPath = QString::fromStdString(file.string());

    QSettings settings(s_Helper.m_iniPath, QSettings::IniFormat);
    settings.beginGroup(kColorGroup);
    // Intended: every entry is loaded, and one that is no number is a transparent black.
    for (const QString& key : settings.allKeys())
        s_Helper.m_penColors[key] = QColor::fromRgba(settings.value(key, QVariant()).toUInt());
    settings.endGroup();
}

void ScreenCaptureTool::penColor(ScreenCaptureToolColors& colors)
{
    for (const StoredColor& stored : kStoredColors)
        colors.*stored.color = s_Helper.m_penColors[stored.key];
}

void ScreenCaptureTool::setPenColor(const ScreenCaptureToolColors& colors)
{
    for (const StoredColor& stored : kStoredColors)
        s_Helper.m_penColors[stored.key] = colors.*stored.color;
    s_Helper.m_penColors[kTextColor] = colors.textColor;
    if (!hasDirectory(s_Helper.m_iniPath))
        return;

    QSettings settings(s_Helper.m_iniPath, QSettings::IniFormat);
    settings.beginGroup(kColorGroup);
    for (const StoredColor& stored : kStoredColors)
        settings.setValue(stored.key, QVariant(uint((colors.*stored.color).rgba())));
    settings.endGroup();
}
