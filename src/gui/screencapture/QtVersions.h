// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QImage>
#include <QImageReader>
#include <QLibraryInfo>
#include <QMouseEvent>
#include <QPointF>
#include <QRect>
#include <QString>
#include <utility>

/// What is called otherwise, or does otherwise, in Qt 5 and Qt 6.
namespace qtversions
{

#if QT_VERSION_MAJOR >= 6

inline QPointF posInWidget(const QMouseEvent& event)
{
    return event.position();
}
template <typename PointerEvent>
QPointF posInWindow(const PointerEvent& event)
{
    return event.scenePosition();
}
template <typename PointerEvent>
QPointF posOnDesktop(const PointerEvent& event)
{
    return event.globalPosition();
}
inline QString translationsPath()
{
    return QLibraryInfo::path(QLibraryInfo::TranslationsPath);
}
/// Qt 6 refuses pictures of more than 128 MiB, which desktops have.
inline QImage readOfAnySize(QImageReader& reader)
{
    const int limit = QImageReader::allocationLimit();
    QImageReader::setAllocationLimit(0);
    const QImage image = reader.read();
    QImageReader::setAllocationLimit(limit);
    return image;
}
/// Paints icons in physical pixels.
template <typename Paint>
void withDenseIcons(Paint paint)
{
    paint();
}

#else

/// In children of a window Qt 5 rounds it.
inline QPointF posInWidget(const QMouseEvent& event)
{
    return event.localPos();
}
template <typename PointerEvent>
QPointF posInWindow(const PointerEvent& event)
{
    return event.windowPos();
}
template <typename PointerEvent>
QPointF posOnDesktop(const PointerEvent& event)
{
    return event.screenPos();
}
inline QString translationsPath()
{
    return QLibraryInfo::location(QLibraryInfo::TranslationsPath);
}
inline QImage readOfAnySize(QImageReader& reader)
{
    return reader.read();
}
/// Paints icons in physical pixels, which Qt 5 leaves to the host to ask for.
template <typename Paint>
void withDenseIcons(Paint paint)
{
    const bool isAskedFor = QCoreApplication::testAttribute(Qt::AA_UseHighDpiPixmaps);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    paint();
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, isAskedFor);
}

#endif

/// The rectangle with the same corners whose width and height are not negative. QRect::normalized()
/// of Qt 6 leaves the corners of an inverted rectangle out.
inline QRect normalized(const QRect& rect)
{
    int left = rect.left(), top = rect.top(), right = rect.right(), bottom = rect.bottom();
    if (rect.width() < 0)
        std::swap(left, right);
    if (rect.height() < 0)
        std::swap(top, bottom);
    return {QPoint(left, top), QPoint(right, bottom)};
}

} // namespace qtversions
