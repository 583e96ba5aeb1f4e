// SPDX-License-Identifier: MIT
#include "ScreenCaptureTool.h"

#include "myfs.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QVariant>
#include <new>

namespace
{

const char* const kSettingsFile = "screencapture.ini";
const char* const kColorGroup = "pen_color";
constexpr int kLockSigningMs = 1000;

const QString kScribble = QStringLiteral("scribbleColor");
const QString kRect = QStringLiteral("rectColor");
const QString kEllipse = QStringLiteral("ellipseColor");
const QString kArrow = QStringLiteral("arrowColor");
const QString kText = QStringLiteral("textColor");

const QColor kDefaultPenColor(251, 56, 56, 255);
const QColor kDefaultTextColor(0, 0, 0, 255);

ScreenCaptureToolHelper s_Helper;

// Qt would make a directory that is missing, which is the application's to make.
bool hasPlaceForSettings()
{
    const QString& file = s_Helper.m_iniPath;
    return !file.isEmpty() && QFileInfo(file).dir().exists();
}

void loadColors()
{
    QSettings settings(s_Helper.m_iniPath, QSettings::IniFormat);
    settings.beginGroup(kColorGroup);
    // Intended: every entry is loaded, and one that is no number is a transparent black. Only an
    // entry without a name is left out, which Qt would warn of.
    for (const QString& key : settings.allKeys()) {
        if (!key.isEmpty())
            s_Helper.m_penColors[key] = QColor::fromRgba(settings.value(key, QVariant()).toUInt());
    }
    settings.endGroup();
}

// A process killed between making the lock of the file and signing it leaves an empty one, for
// which Qt would hold up the next one for half a minute.
void removeUnsignedLock()
{
    const QFileInfo lock(s_Helper.m_iniPath + ".lock");
    if (lock.exists() && lock.size() == 0 &&
        lock.lastModified().msecsTo(QDateTime::currentDateTime()) > kLockSigningMs)
        QFile::remove(lock.filePath());
}

} // namespace

ScreenCaptureToolHelper::ScreenCaptureToolHelper()
{
    for (const QString& key : {kScribble, kRect, kEllipse, kArrow})
        m_penColors[key] = kDefaultPenColor;
    m_penColors[kText] = kDefaultTextColor;
}

void ScreenCaptureTool::init(const QString& dir)
{
    myfs::path file(dir.toStdString());
    file.append(kSettingsFile);
    s_Helper.m_iniPath = QString::fromStdString(file.string());

    try {
        loadColors();
    } catch (const std::bad_alloc&) {
        // Qt believes the sizes that the values of a damaged file claim. The colours stay.
    }
}

void ScreenCaptureTool::penColor(ScreenCaptureToolColors& colors)
{
    colors.scribbleColor = s_Helper.m_penColors[kScribble];
    colors.rectColor = s_Helper.m_penColors[kRect];
    colors.ellipseColor = s_Helper.m_penColors[kEllipse];
    colors.arrowColor = s_Helper.m_penColors[kArrow];
}

void ScreenCaptureTool::setPenColor(const ScreenCaptureToolColors& colors)
{
    s_Helper.m_penColors[kScribble] = colors.scribbleColor;
    s_Helper.m_penColors[kRect] = colors.rectColor;
    s_Helper.m_penColors[kEllipse] = colors.ellipseColor;
    s_Helper.m_penColors[kArrow] = colors.arrowColor;
    s_Helper.m_penColors[kText] = colors.textColor;
    if (!hasPlaceForSettings())
        return;
    removeUnsignedLock();

    // Intended: the text colour lives in memory only.
    QSettings settings(s_Helper.m_iniPath, QSettings::IniFormat);
    settings.beginGroup(kColorGroup);
    for (const QString& key : {kScribble, kRect, kEllipse, kArrow})
        settings.setValue(key, QVariant(uint(s_Helper.m_penColors[key].rgba())));
    settings.endGroup();
}
