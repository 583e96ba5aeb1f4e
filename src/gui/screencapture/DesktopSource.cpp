// SPDX-License-Identifier: MIT
#include "DesktopSource.h"

#include "NativeDesktop.h"
#include "PortalScreenshot.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>

namespace
{

// The physical pixels of all screens: on X11 these are one space, whatever the ratio of each.
QImage grabbed(const NativeDesktop& desktop)
{
    QScreen* screen = QGuiApplication::primaryScreen();
    const QSize size = desktop.root() ? QSize(-1, -1) : screen->virtualSize();
    return screen->grabWindow(desktop.root(), 0, 0, size.width(), size.height()).toImage();
}

/// Returns how many times as large a picture is as the desktop, and 0 where that is not the same in
/// both directions. The portal rounds the size.
qreal ratioTo(const QSize& desktop, const QSize& picture)
{
    constexpr qreal kRoundingPx = 2;
    const qreal ratio = qreal(picture.width()) / desktop.width();
    const qreal off = qAbs(picture.height() / ratio - desktop.height());
    return picture.isEmpty() || off > kRoundingPx ? 0 : ratio;
}

} // namespace

DesktopSource::DesktopSource(QObject* parent)
    : QObject(parent)
{
}

DesktopSource::~DesktopSource()
{
    if (m_portal)
        m_portal->withdraw();
}

void DesktopSource::take(const NativeDesktop& desktop)
{
    if (desktop.isWayland()) {
        m_portal = new PortalScreenshot(QCoreApplication::instance());
        const QSize size = desktop.coveringGeometry().size();
        connect(m_portal, &PortalScreenshot::finished, this,
                [this, size](QImage image, const QString& failure) {
                    const qreal ratio = ratioTo(size, image.size());
                    const QString nonsense = tr("The picture is not that of the whole desktop.");
                    if (ratio == 0)
                        return emit taken(QImage(), failure.isEmpty() ? nonsense : failure);
                    image.setDevicePixelRatio(ratio);
                    emit taken(image, QString());
                });
        m_portal->request();
        return;
    }
    const QImage image = grabbed(desktop);
    emit taken(image, image.isNull() ? tr("The screens cannot be grabbed.") : QString());
}
