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

constexpr QColor kDefaultPenColor(251, 56, 56, 255);
constexpr QColor kDefaultTextColor(0, 0, 0, 255);

struct ToolColor {
    const char* key;
    QColor ScreenCaptureToolColors::*color;
    QColor byDefault;
    bool isStored;
};

// Intended: the text colour is read like any other, but neither handed out nor written.
constexpr ToolColor kToolColors[] = {
    {"scribbleColor", &ScreenCaptureToolColors::scribbleColor, kDefaultPenColor, true},
    {"rectColor", &ScreenCaptureToolColors::rectColor, kDefaultPenColor, true},
    {"ellipseColor", &ScreenCaptureToolColors::ellipseColor, kDefaultPenColor, true},
    {"arrowColor", &ScreenCaptureToolColors::arrowColor, kDefaultPenColor, true},
    {"textColor", &ScreenCaptureToolColors::textColor, kDefaultTextColor, false},
};
constexpr std::size_t kColorCount = sizeof(ScreenCaptureToolColors) / sizeof(QColor);
static_assert(std::size(kToolColors) == kColorCount, "a colour without a row is never remembered");

ScreenCaptureToolHelper s_Helper;

// QSettings creates a missing directory, which is the application's to create. An empty file name
// has no directory.
bool hasDirectory(const QString& file)
{
    return QFileInfo::exists(QFileInfo(file).path());
}

} // namespace

ScreenCaptureToolHelper::ScreenCaptureToolHelper()
{
    for (const ToolColor& tool : kToolColors)
        m_penColors[tool.key] = tool.byDefault;
}

void ScreenCaptureTool::init(const QString& dir)
{
    myfs::path file(dir.toStdString());
    file.append(kSettingsFile);
    s_Helper.m_iniPath = QString::fromStdString(file.string());

    QSettings settings(s_Helper.m_iniPath, QSettings::IniFormat);
    settings.beginGroup(kColorGroup);
    // Intended: every entry is loaded, and an entry that is not a number is a transparent black.
    for (const QString& key : settings.allKeys())
        s_Helper.m_penColors[key] = QColor::fromRgba(settings.value(key, QVariant()).toUInt());
    settings.endGroup();
}

void ScreenCaptureTool::penColor(ScreenCaptureToolColors& colors)
{
    for (const ToolColor& tool : kToolColors) {
        if (tool.isStored)
            colors.*tool.color = s_Helper.m_penColors[tool.key];
    }
}

void ScreenCaptureTool::setPenColor(const ScreenCaptureToolColors& colors)
{
    for (const ToolColor& tool : kToolColors)
        s_Helper.m_penColors[tool.key] = colors.*tool.color;
    if (!hasDirectory(s_Helper.m_iniPath))
        return;

    QSettings settings(s_Helper.m_iniPath, QSettings::IniFormat);
    settings.beginGroup(kColorGroup);
    for (const ToolColor& tool : kToolColors) {
        if (tool.isStored)
            settings.setValue(tool.key, QVariant(uint((colors.*tool.color).rgba())));
    }
    settings.endGroup();
}
