// SPDX-License-Identifier: MIT
#pragma once

#include <QLibraryInfo>
#include <QMouseEvent>
#include <QPointF>
#include <QString>

/// All that Qt 5 and Qt 6 have different names for.
namespace qtversions
{

#if QT_VERSION_MAJOR >= 6

inline QPointF posInWidget(const QMouseEvent& event)
{
    return event.position();
}
inline QPointF posInWindow(const QMouseEvent& event)
{
    return event.scenePosition();
}
inline QPointF posOnDesktop(const QMouseEvent& event)
{
    return event.globalPosition();
}
inline QString translationsPath()
{
    return QLibraryInfo::path(QLibraryInfo::TranslationsPath);
}

#else

/// In children of a window Qt 5 rounds it.
inline QPointF posInWidget(const QMouseEvent& event)
{
    return event.localPos();
}
inline QPointF posInWindow(const QMouseEvent& event)
{
    return event.windowPos();
}
inline QPointF posOnDesktop(const QMouseEvent& event)
{
    return event.screenPos();
}
inline QString translationsPath()
{
    return QLibraryInfo::location(QLibraryInfo::TranslationsPath);
}

#endif

} // namespace qtversions
