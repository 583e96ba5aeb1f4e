// SPDX-License-Identifier: MIT
#include "ScreenCaptureTool.h"

#include "myfs.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QVariant>
#include <cctype>

namespace
{

const char* const kSettingsFile = "screencapture.ini";
const char* const kColorGroup = "pen_color";
const QByteArray kNamedEscapes = QByteArrayLiteral("abfnrtv\"?'\\");
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

// The number after a backslash, in the given base: its digits are taken from `at` on.
char escapedCharacter(const QByteArray& text, int& at, int base)
{
    const int begin = at;
    const auto isDigit = [base](char c) {
        return base == 8 ? c >= '0' && c <= '7' : std::isxdigit(uchar(c)) != 0;
    };
    while (at < text.size() && isDigit(text.at(at)))
        ++at;
    // Qt counts in 16 bits.
    constexpr int kDigits = 4;
    return char(text.mid(begin, at - begin).right(kDigits).toUInt(nullptr, base));
}

bool isLineBreak(char c)
{
    return c == '\n' || c == '\r';
}

// The values as Qt takes them: without quotes, and with escapes resolved. What a backslash does not
// give a name is skipped.
QByteArray unescaped(const QByteArray& text)
{
    QByteArray plain;
    plain.reserve(text.size());
    for (int i = 0; i < text.size();) {
        const char c = text.at(i++);
        if (c != '\\' || i == text.size()) {
            if (c != '"')
                plain += c;
        } else if (text.at(i) == 'x') {
            plain += escapedCharacter(text, ++i, 16);
        } else if (text.at(i) >= '0' && text.at(i) <= '7') {
            plain += escapedCharacter(text, i, 8);
        } else {
            const char escaped = text.at(i++);
            if (kNamedEscapes.contains(escaped))
                plain += ' ';
            else if (isLineBreak(escaped) && i < text.size() && isLineBreak(text.at(i)))
                ++i;
        }
    }
    return plain;
}

// Qt makes room for as many values as a serialised list of the file claims to have, and throws
// where there is none, which it does not survive itself. Nobody here writes such values: a file
// with one is neither read nor written.
bool holdsSerialisedObjects(const QByteArray& settings)
{
    return unescaped(settings).contains("@Variant(");
}

QByteArray readSettings()
{
    QFile file(s_Helper.m_iniPath);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// On a full disk Qt puts a file without contents in the place of the settings, whose room may serve
// for them again.
void putBackIfEmptied(const QByteArray& settings)
{
    QFile file(s_Helper.m_iniPath);
    if (!settings.isEmpty() && file.size() == 0 && file.open(QIODevice::WriteOnly))
        file.write(settings);
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

// Intended: the text colour lives in memory only.
void storeColors()
{
    QSettings settings(s_Helper.m_iniPath, QSettings::IniFormat);
    settings.beginGroup(kColorGroup);
    for (const QString& key : {kScribble, kRect, kEllipse, kArrow})
        settings.setValue(key, QVariant(uint(s_Helper.m_penColors[key].rgba())));
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

    if (!holdsSerialisedObjects(readSettings()))
        loadColors();
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
    const QByteArray before = readSettings();
    if (holdsSerialisedObjects(before))
        return;
    removeUnsignedLock();
    storeColors();
    putBackIfEmptied(before);
}
